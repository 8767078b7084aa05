-- Primary database of the tracking product, as far as Tallyport reads and writes it.
-- The product owns the real schema; this one gives the demo and the tests a database.
--
-- Dates are whole numbers YYYYMMDD, times whole numbers HHMMSS (no leading zeros).
-- Truth values are whole numbers: -1 or 1 for true, 0 for false.
-- Text widths are declared so that the import can cut values to the column's size.
-- The master tables (employees, vehicles, customers) carry no unique key on their
-- numbers: an import may add two file records with the same number.

CREATE TABLE UserNames (
    UserID          INTEGER PRIMARY KEY,
    UserName        VARCHAR(30),
    Administrator   INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE Permissions (
    UserID          INTEGER NOT NULL,
    FormID          INTEGER NOT NULL,
    CanAdd          INTEGER NOT NULL DEFAULT 0,
    CanModify       INTEGER NOT NULL DEFAULT 0,
    CanView         INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE BranchInfo (
    BranchNumber    INTEGER PRIMARY KEY,
    BranchName      VARCHAR(30)
);

CREATE TABLE StatesAndProvinces (
    GTKRVAbbreviation VARCHAR(2) PRIMARY KEY,
    StateName       VARCHAR(30)
);

CREATE TABLE ValidTrackerSerialNumbers (
    TrackerSerialNumber VARCHAR(9) PRIMARY KEY
);

-- Vehicle groups.
CREATE TABLE Extra2 (
    UniqueID        INTEGER PRIMARY KEY,
    Description     VARCHAR(30)
);

CREATE TABLE EmployeeInfo (
    EmployeeNumber  INTEGER,
    Name            VARCHAR(50),
    LastName        VARCHAR(30),
    FirstName       VARCHAR(20),
    MI              VARCHAR(1),
    AccountingID    VARCHAR(20),
    BranchNumber    INTEGER DEFAULT 0,
    Address1        VARCHAR(30),
    Address2        VARCHAR(30),
    City            VARCHAR(20),
    State           VARCHAR(2),
    Zip             VARCHAR(10),
    MobilePhone     VARCHAR(14),
    WorkPhone       VARCHAR(14),
    Phone           VARCHAR(14),
    Pager           VARCHAR(14)
);

CREATE TABLE VehicleInfo (
    VehicleNumber   INTEGER,
    LicenseNumber   VARCHAR(10),
    VINNumber       VARCHAR(30),
    TrackerSerialNumber VARCHAR(9),
    VehicleIdentifier VARCHAR(30),
    BranchNumber    INTEGER DEFAULT 0,
    DateAcquired    VARCHAR(8),
    Year            INTEGER,
    Make            VARCHAR(20),
    Model           VARCHAR(20),
    VehicleDescription VARCHAR(50),
    AccountingID    VARCHAR(20),
    Field1          VARCHAR(9)
);

CREATE TABLE CustomerInfo (
    CustomerNumber  INTEGER,
    CompanyName     VARCHAR(30),
    ContactLastName VARCHAR(30),
    ContactMI       VARCHAR(1),
    ContactFirstName VARCHAR(20),
    AccountingID    VARCHAR(20),
    BranchNumber    INTEGER DEFAULT 0,
    Address1        VARCHAR(30),
    Address2        VARCHAR(30),
    City            VARCHAR(20),
    State           VARCHAR(2),
    Zip             VARCHAR(10),
    MobilePhone     VARCHAR(14),
    WorkPhone       VARCHAR(14),
    Pager           VARCHAR(14)
);

-- Map locations and pinpoints; the import numbers new rows max + 1.
CREATE TABLE CommonLocations (
    CommonLocationNumber INTEGER PRIMARY KEY,
    BranchNumber    INTEGER DEFAULT 0,
    LocationName    VARCHAR(30),
    Address1        VARCHAR(30),
    Address2        VARCHAR(30),
    City            VARCHAR(20),
    State           VARCHAR(2),
    ZipCode         VARCHAR(10),
    Longitude       REAL,
    Latitude        REAL
);

-- Approved: 0 not approved, 1 waiting for export, 2 exported. ExportID grows by one per export.
CREATE TABLE JobTimeRecords (
    NewTimeRecordID INTEGER PRIMARY KEY,
    EmployeeNumber  INTEGER,
    VehicleBlock    INTEGER,
    EmployeeFirstName VARCHAR(20),
    EmployeeLastName VARCHAR(30),
    Date            INTEGER,
    Time            INTEGER,
    JobRecordID     INTEGER,
    CustomerNumber  INTEGER,
    IsJobInRecord   INTEGER NOT NULL DEFAULT 0,
    IsTimeInRecord  INTEGER NOT NULL DEFAULT 0,
    IsJobOutRecord  INTEGER NOT NULL DEFAULT 0,
    IsTimeOutRecord INTEGER NOT NULL DEFAULT 0,
    OdometerReading INTEGER,
    Approved        INTEGER NOT NULL DEFAULT 0,
    ExportID        INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE InventoryHistory (
    InventoryHistoryID INTEGER PRIMARY KEY,
    InventoryNumber INTEGER,
    EmployeeID      INTEGER,
    CustomerID      INTEGER,
    UsedQuantity    INTEGER,
    EmployeeFirstName VARCHAR(20),
    EmployeeLastName VARCHAR(30),
    Date            INTEGER,
    Time            INTEGER,
    JobRecordID     INTEGER,
    Approved        INTEGER NOT NULL DEFAULT 0,
    ExportID        INTEGER NOT NULL DEFAULT 0
);

-- One row per track; EmployeeNumber below 1 means no employee.
CREATE TABLE EmployeeTrackActivity (
    TrackID         INTEGER PRIMARY KEY,
    EmployeeNumber  INTEGER,
    VehicleNumber   INTEGER,
    TrackingDate    INTEGER
);

-- Longitude or Latitude -1 marks a fix that must not be used.
CREATE TABLE GPSCoordinates (
    TrackID         INTEGER,
    Longitude       REAL,
    Latitude        REAL,
    RcvDate         INTEGER,
    RcvTime         INTEGER,
    Speed           REAL,
    TimeDeviation   INTEGER,
    PowerOnOff      INTEGER,
    TrackStartStop  INTEGER,
    DownloadID      INTEGER
);

CREATE INDEX ixPermissionsUser ON Permissions (UserID, FormID);
CREATE INDEX ixEmployeeInfoNumber ON EmployeeInfo (EmployeeNumber);
CREATE INDEX ixVehicleInfoNumber ON VehicleInfo (VehicleNumber);
CREATE INDEX ixCustomerInfoNumber ON CustomerInfo (CustomerNumber);
CREATE INDEX ixCommonLocationsName ON CommonLocations (LocationName);
CREATE INDEX ixJobTimeRecordsExport ON JobTimeRecords (Approved, ExportID);
CREATE INDEX ixJobTimeRecordsDate ON JobTimeRecords (Date);
CREATE INDEX ixInventoryHistoryExport ON InventoryHistory (Approved, ExportID);
CREATE INDEX ixInventoryHistoryDate ON InventoryHistory (Date);
CREATE INDEX ixTrackActivitySubject ON EmployeeTrackActivity (EmployeeNumber, VehicleNumber, TrackingDate);
CREATE INDEX ixGPSCoordinatesTrack ON GPSCoordinates (TrackID, RcvDate, RcvTime);
CREATE INDEX ixGPSCoordinatesRcvDate ON GPSCoordinates (RcvDate);
