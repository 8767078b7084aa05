#pragma once
// Word lists the demo data is drawn from.
#include <array>

namespace tp::demo_names {

inline constexpr std::array kFirstNames = {
    "James", "Mary", "Robert", "Patricia", "John", "Jennifer", "Michael", "Linda", "David",
    "Elizabeth", "William", "Barbara", "Richard", "Susan", "Joseph", "Jessica", "Thomas", "Sarah",
    "Carlos", "Karen", "Daniel", "Nancy", "Matthew", "Lisa", "Anthony", "Betty", "Mark", "Sandra",
    "Donald", "Ashley", "Steven", "Kimberly", "Andrew", "Emily", "Paul", "Donna", "Joshua",
    "Michelle", "Kenneth", "Carol", "Kevin", "Amanda", "Brian", "Melissa", "Jose", "Deborah"};

inline constexpr std::array kLastNames = {
    "Smith", "Johnson", "Williams", "Brown", "Jones", "Garcia", "Miller", "Davis", "Rodriguez",
    "Martinez", "Hernandez", "Lopez", "Gonzalez", "Wilson", "Anderson", "Thomas", "Taylor",
    "Moore", "Jackson", "Martin", "Lee", "Perez", "Thompson", "White", "Harris", "Sanchez",
    "Clark", "Ramirez", "Lewis", "Robinson", "Walker", "Young", "Allen", "King", "Wright",
    "Scott", "Torres", "Nguyen", "Hill", "Flores", "Green", "Adams", "Nelson", "Baker", "Hall",
    "O'Brien", "Kowalski", "Novak"};

inline constexpr std::array kStreets = {
    "Main St", "Oak Ave", "Maple Dr", "Cedar Ln", "Park Blvd", "Lake St", "Hill Rd", "Pine St",
    "Elm St", "Washington Ave", "Lincoln Way", "Jefferson St", "Madison Ave", "River Rd",
    "Sunset Blvd", "Industrial Pkwy", "Commerce Dr", "Harbor Ln"};

struct Branch {
    const char* name;
    const char* city;
    const char* state;
    const char* zip;
    const char* area;   // telephone area code
    double latitude, longitude;
};

inline constexpr std::array kBranches = {
    Branch{"Chicago Central", "Chicago", "IL", "60601", "312", 41.8781, -87.6298},
    Branch{"Milwaukee North", "Milwaukee", "WI", "53202", "414", 43.0389, -87.9065},
    Branch{"Indianapolis South", "Indianapolis", "IN", "46204", "317", 39.7684, -86.1581},
};

inline constexpr std::array kCompanies = {
    "Acme Plumbing", "Blue Lake Dental", "Cornerstone Bakery", "Delta Freight", "Evergreen Realty",
    "Fairview School", "Granite Builders", "Harbor Marine", "Ironwood Hotel", "Juniper Cafe",
    "Keystone Insurance", "Lakeside Clinic", "Midway Motors", "Northstar Library", "Oakridge Farms",
    "Pioneer Printing", "Quarry Supply", "Riverside Church", "Summit Fitness", "Twin Oaks Golf",
    "Union Station Deli", "Valley Hardware", "Westgate Mall", "Yellow Door Pub", "Zenith Labs"};

inline constexpr std::array kLocationNames = {
    "Central Warehouse", "North Depot", "South Yard", "East Service Center", "West Fuel Stop",
    "Airport Cargo Gate", "Harbor Dock 4", "Joe's Garage", "City Hall Annex", "Distribution Hub",
    "Rail Yard Gate B", "Hospital Loading Dock", "Stadium Lot C", "Convention Center",
    "Mall Service Entry", "University Motor Pool", "Water Plant", "Transit Garage", "Quarry Entrance",
    "Lumber Yard", "Farm Market", "Tech Park Bldg 7", "Ferry Terminal", "Customs Office",
    "Salt Dome"};

inline constexpr std::array kVehicleModels = {
    std::array{"Ford", "Transit"}, std::array{"Ford", "F-150"}, std::array{"Chevrolet", "Express"},
    std::array{"Chevrolet", "Silverado"}, std::array{"Ram", "ProMaster"},
    std::array{"Mercedes-Benz", "Sprinter"}, std::array{"Toyota", "Tacoma"},
    std::array{"Nissan", "NV200"}, std::array{"GMC", "Savana"}, std::array{"Isuzu", "NPR"}};

inline constexpr std::array kVehicleKinds = {"Service van", "Pickup truck", "Box truck",
                                             "Cargo van", "Crew cab"};

inline constexpr std::array kGroups = {"Service", "Delivery", "Installation", "Management"};

// Two capitals each: US states, the District, Canadian provinces and territories.
inline constexpr std::array kStates = {
    std::array{"AL", "Alabama"}, std::array{"AK", "Alaska"}, std::array{"AZ", "Arizona"},
    std::array{"AR", "Arkansas"}, std::array{"CA", "California"}, std::array{"CO", "Colorado"},
    std::array{"CT", "Connecticut"}, std::array{"DE", "Delaware"},
    std::array{"DC", "District of Columbia"}, std::array{"FL", "Florida"},
    std::array{"GA", "Georgia"}, std::array{"HI", "Hawaii"}, std::array{"ID", "Idaho"},
    std::array{"IL", "Illinois"}, std::array{"IN", "Indiana"}, std::array{"IA", "Iowa"},
    std::array{"KS", "Kansas"}, std::array{"KY", "Kentucky"}, std::array{"LA", "Louisiana"},
    std::array{"ME", "Maine"}, std::array{"MD", "Maryland"}, std::array{"MA", "Massachusetts"},
    std::array{"MI", "Michigan"}, std::array{"MN", "Minnesota"}, std::array{"MS", "Mississippi"},
    std::array{"MO", "Missouri"}, std::array{"MT", "Montana"}, std::array{"NE", "Nebraska"},
    std::array{"NV", "Nevada"}, std::array{"NH", "New Hampshire"}, std::array{"NJ", "New Jersey"},
    std::array{"NM", "New Mexico"}, std::array{"NY", "New York"},
    std::array{"NC", "North Carolina"}, std::array{"ND", "North Dakota"},
    std::array{"OH", "Ohio"}, std::array{"OK", "Oklahoma"}, std::array{"OR", "Oregon"},
    std::array{"PA", "Pennsylvania"}, std::array{"RI", "Rhode Island"},
    std::array{"SC", "South Carolina"}, std::array{"SD", "South Dakota"},
    std::array{"TN", "Tennessee"}, std::array{"TX", "Texas"}, std::array{"UT", "Utah"},
    std::array{"VT", "Vermont"}, std::array{"VA", "Virginia"}, std::array{"WA", "Washington"},
    std::array{"WV", "West Virginia"}, std::array{"WI", "Wisconsin"}, std::array{"WY", "Wyoming"},
    std::array{"AB", "Alberta"}, std::array{"BC", "British Columbia"},
    std::array{"MB", "Manitoba"}, std::array{"NB", "New Brunswick"},
    std::array{"NL", "Newfoundland and Labrador"}, std::array{"NS", "Nova Scotia"},
    std::array{"NT", "Northwest Territories"}, std::array{"NU", "Nunavut"},
    std::array{"ON", "Ontario"}, std::array{"PE", "Prince Edward Island"},
    std::array{"QC", "Quebec"}, std::array{"SK", "Saskatchewan"}, std::array{"YT", "Yukon"}};

} // namespace tp::demo_names
