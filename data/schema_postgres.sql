-- Primary database of the tracking product on PostgreSQL, as far as Tallyport reads and writes it.
-- The product owns the real schema; this one gives the demo and the tests a database.
--
-- Dates are whole numbers YYYYMMDD, times whole numbers HHMMSS (no leading zeros).
-- Truth values are whole numbers: -1 or 1 for true, 0 for false.
-- Text widths are declared so that the import can cut values to the column's size.
-- Names are unquoted and fold to lower case (Date, Time and Year are ordinary column names here).
-- The master tables (employees, vehicles, customers) carry no unique key on their
-- numbers: an import may add two file records with the same number.

CREATE TABLE UserNames (
    UserID          integer PRIMARY KEY,
    UserName        varchar(30),
    Administrator   smallint NOT NULL DEFAULT 0
);

CREATE TABLE Permissions (
    UserID          integer NOT NULL,
    FormID          integer NOT NULL,
    CanAdd          smallint NOT NULL DEFAULT 0,
    CanModify       smallint NOT NULL DEFAULT 0,
    CanView         smallint NOT NULL DEFAULT 0
);

CREATE TABLE BranchInfo (
    BranchNumber    integer PRIMARY KEY,
    BranchName      varchar(30)
);

CREATE TABLE StatesAndProvinces (
    GTKRVAbbreviation varchar(2) PRIMARY KEY,
    StateName       varchar(30)
);

CREATE TABLE ValidTrackerSerialNumbers (
    TrackerSerialNumber varchar(9) PRIMARY KEY
);

-- Vehicle groups.
CREATE TABLE Extra2 (
    UniqueID        integer PRIMARY KEY,
    Description     varchar(30)
);

CREATE TABLE EmployeeInfo (
    EmployeeNumber  integer,
    Name            varchar(50),
    LastName        varchar(30),
    FirstName       varchar(20),
    MI              varchar(1),
    AccountingID    varchar(20),
    BranchNumber    integer DEFAULT 0,
    Address1        varchar(30),
    Address2        varchar(30),
    City            varchar(20),
    State           varchar(2),
    Zip             varchar(10),
    MobilePhone     varchar(14),
    WorkPhone       varchar(14),
    Phone           varchar(14),
    Pager           varchar(14)
);

CREATE TABLE VehicleInfo (
    VehicleNumber   integer,
    LicenseNumber   varchar(10),
    VINNumber       varchar(30),
    TrackerSerialNumber varchar(9),
    VehicleIdentifier varchar(30),
    BranchNumber    integer DEFAULT 0,
    DateAcquired    varchar(8),
    year            integer,
    Make            varchar(20),
    Model           varchar(20),
    VehicleDescription varchar(50),
    AccountingID    varchar(20),
    Field1          varchar(9)
);

CREATE TABLE CustomerInfo (
    CustomerNumber  integer,
    CompanyName     varchar(30),
    ContactLastName varchar(30),
    ContactMI       varchar(1),
    ContactFirstName varchar(20),
    AccountingID    varchar(20),
    BranchNumber    integer DEFAULT 0,
    Address1        varchar(30),
    Address2        varchar(30),
    City            varchar(20),
    State           varchar(2),
    Zip             varchar(10),
    MobilePhone     varchar(14),
    WorkPhone       varchar(14),
    Pager           varchar(14)
);

-- Map locations and pinpoints; the import numbers new rows max + 1.
CREATE TABLE CommonLocations (
    CommonLocationNumber integer PRIMARY KEY,
    BranchNumber    integer DEFAULT 0,
    LocationName    varchar(30),
    Address1        varchar(30),
    Address2        varchar(30),
    City            varchar(20),
    State           varchar(2),
    ZipCode         varchar(10),
    Longitude       double precision,
    Latitude        double precision
);

-- Approved: 0 not approved, 1 waiting for export, 2 exported. ExportID grows by one per export.
CREATE TABLE JobTimeRecords (
    NewTimeRecordID integer PRIMARY KEY,
    EmployeeNumber  integer,
    VehicleBlock    integer,
    EmployeeFirstName varchar(20),
    EmployeeLastName varchar(30),
    date            integer,
    time            integer,
    JobRecordID     integer,
    CustomerNumber  integer,
    IsJobInRecord   smallint NOT NULL DEFAULT 0,
    IsTimeInRecord  smallint NOT NULL DEFAULT 0,
    IsJobOutRecord  smallint NOT NULL DEFAULT 0,
    IsTimeOutRecord smallint NOT NULL DEFAULT 0,
    OdometerReading integer,
    Approved        integer NOT NULL DEFAULT 0,
    ExportID        integer NOT NULL DEFAULT 0
);

CREATE TABLE InventoryHistory (
    InventoryHistoryID integer PRIMARY KEY,
    InventoryNumber integer,
    EmployeeID      integer,
    CustomerID      integer,
    UsedQuantity    integer,
    EmployeeFirstName varchar(20),
    EmployeeLastName varchar(30),
    date            integer,
    time            integer,
    JobRecordID     integer,
    Approved        integer NOT NULL DEFAULT 0,
    ExportID        integer NOT NULL DEFAULT 0
);

-- One row per track; EmployeeNumber below 1 means no employee.
CREATE TABLE EmployeeTrackActivity (
    TrackID         integer PRIMARY KEY,
    EmployeeNumber  integer,
    VehicleNumber   integer,
    TrackingDate    integer
);

-- Longitude or Latitude -1 marks a fix that must not be used.
CREATE TABLE GPSCoordinates (
    TrackID         integer,
    Longitude       double precision,
    Latitude        double precision,
    RcvDate         integer,
    RcvTime         integer,
    Speed           double precision,
    TimeDeviation   integer,
    PowerOnOff      integer,
    TrackStartStop  integer,
    DownloadID      integer
);

CREATE INDEX ixPermissionsUser ON Permissions (UserID, FormID);
CREATE INDEX ixEmployeeInfoNumber ON EmployeeInfo (EmployeeNumber);
CREATE INDEX ixVehicleInfoNumber ON VehicleInfo (VehicleNumber);
CREATE INDEX ixCustomerInfoNumber ON CustomerInfo (CustomerNumber);
CREATE INDEX ixCommonLocationsName ON CommonLocations (LocationName);
CREATE INDEX ixJobTimeRecordsExport ON JobTimeRecords (Approved, ExportID);
CREATE INDEX ixJobTimeRecordsDate ON JobTimeRecords (date);
CREATE INDEX ixInventoryHistoryExport ON InventoryHistory (Approved, ExportID);
CREATE INDEX ixInventoryHistoryDate ON InventoryHistory (date);
CREATE INDEX ixTrackActivitySubject ON EmployeeTrackActivity (EmployeeNumber, VehicleNumber, TrackingDate);
CREATE INDEX ixGPSCoordinatesTrack ON GPSCoordinates (TrackID, RcvDate, RcvTime);
CREATE INDEX ixGPSCoordinatesRcvDate ON GPSCoordinates (RcvDate);
