-- The demo database: a small shop with its catalogue, customers, staff,
-- stores, orders and payments. The build runs this script into demo.db; the
-- demo project and the tests read it, and the generated site lists its rows.
--
-- It declares every column type a user is likely to write in SQLite, so that
-- the schema reader and the type mapping meet each of them on real tables:
-- whole numbers of four widths, text of three kinds, REAL, NUMERIC and
-- DECIMAL with precision and scale, DATE, DATETIME, TIME, BOOLEAN, BLOB and
-- UNIQUEIDENTIFIER. Dates and times are ISO 8601 text, booleans 0 and 1.
--
-- One transaction: a failing statement leaves nothing behind.

PRAGMA foreign_keys = ON;

BEGIN TRANSACTION;

-- Catalogue -----------------------------------------------------------------

CREATE TABLE Categories (
  CategoryID    INTEGER PRIMARY KEY,
  CategoryName  VARCHAR(40) NOT NULL,
  Description   TEXT,
  SortOrder     SMALLINT NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX UX_Categories_CategoryName ON Categories (CategoryName);

CREATE TABLE Suppliers (
  SupplierID    INTEGER PRIMARY KEY,
  CompanyName   VARCHAR(60) NOT NULL,
  ContactName   VARCHAR(50),
  Phone         VARCHAR(24),
  City          VARCHAR(40),
  CountryCode   CHAR(2) NOT NULL DEFAULT 'GB',
  Rating        TINYINT DEFAULT 3
);

CREATE TABLE Products (
  ProductID     INTEGER PRIMARY KEY,
  ProductName   VARCHAR(60) NOT NULL,
  SupplierID    INTEGER REFERENCES Suppliers (SupplierID),
  CategoryID    INTEGER NOT NULL REFERENCES Categories (CategoryID),
  SKU           CHAR(8) NOT NULL,
  UnitPrice     NUMERIC(10,2) NOT NULL DEFAULT 0,
  UnitsInStock  SMALLINT NOT NULL DEFAULT 0,
  ReorderLevel  SMALLINT DEFAULT 5,
  WeightKg      REAL,
  Discontinued  BOOLEAN NOT NULL DEFAULT 0,
  AddedOn       DATE
);
CREATE UNIQUE INDEX UX_Products_SKU ON Products (SKU);
CREATE INDEX IX_Products_CategoryID ON Products (CategoryID);

-- People --------------------------------------------------------------------

-- AUTOINCREMENT: a customer number is never given out twice, even after the
-- newest customer is deleted.
CREATE TABLE Customers (
  CustomerID    INTEGER PRIMARY KEY AUTOINCREMENT,
  CustomerGuid  UNIQUEIDENTIFIER NOT NULL,
  FirstName     VARCHAR(40) NOT NULL,
  LastName      VARCHAR(40) NOT NULL,
  Email         VARCHAR(120) NOT NULL,
  Phone         VARCHAR(24),
  Address       TEXT,
  City          VARCHAR(40),
  PostalCode    VARCHAR(10),
  Country       VARCHAR(30) DEFAULT 'United Kingdom',
  BirthDate     DATE,
  LoyaltyPoints BIGINT NOT NULL DEFAULT 0,
  IsActive      BOOLEAN NOT NULL DEFAULT 1,
  CreatedAt     DATETIME NOT NULL DEFAULT CURRENT_TIMESTAMP
);
CREATE UNIQUE INDEX UX_Customers_Email ON Customers (Email);

-- ReportsTo points at the employee's manager; the owner has none.
CREATE TABLE Employees (
  EmployeeID    INTEGER PRIMARY KEY,
  FirstName     VARCHAR(40) NOT NULL,
  LastName      VARCHAR(40) NOT NULL,
  Title         VARCHAR(40),
  ReportsTo     INTEGER REFERENCES Employees (EmployeeID),
  HireDate      DATE NOT NULL,
  ShiftStart    TIME DEFAULT '09:00:00',
  HourlyRate    DECIMAL(8,2),
  Photo         BLOB,
  Notes         TEXT
);

CREATE TABLE Shippers (
  ShipperID     INTEGER PRIMARY KEY,
  CompanyName   VARCHAR(40) NOT NULL,
  Phone         VARCHAR(24),
  TrackingUrl   VARCHAR(200)
);

-- Stores and their stock ----------------------------------------------------

CREATE TABLE Stores (
  StoreID       INTEGER PRIMARY KEY,
  StoreName     VARCHAR(40) NOT NULL,
  City          VARCHAR(40) NOT NULL,
  OpensAt       TIME NOT NULL DEFAULT '08:00:00',
  ClosesAt      TIME NOT NULL DEFAULT '18:00:00',
  ManagerID     INTEGER REFERENCES Employees (EmployeeID)
);

-- One stock line per store and product: the pair is unique.
CREATE TABLE Inventory (
  InventoryID   INTEGER PRIMARY KEY,
  StoreID       INTEGER NOT NULL REFERENCES Stores (StoreID),
  ProductID     INTEGER NOT NULL REFERENCES Products (ProductID),
  Quantity      INTEGER NOT NULL DEFAULT 0,
  LastCounted   DATETIME
);
CREATE UNIQUE INDEX UX_Inventory_Store_Product ON Inventory (StoreID, ProductID);

-- Orders --------------------------------------------------------------------

CREATE TABLE Orders (
  OrderID       INTEGER PRIMARY KEY,
  CustomerID    INTEGER NOT NULL REFERENCES Customers (CustomerID),
  EmployeeID    INTEGER REFERENCES Employees (EmployeeID),
  OrderDate     DATETIME NOT NULL DEFAULT CURRENT_TIMESTAMP,
  RequiredDate  DATE,
  ShippedDate   DATE,
  ShipperID     INTEGER REFERENCES Shippers (ShipperID),
  Freight       NUMERIC(10,2) NOT NULL DEFAULT 0,
  Status        VARCHAR(12) NOT NULL DEFAULT 'new',
  ShipCity      VARCHAR(40),
  Comments      TEXT
);
CREATE INDEX IX_Orders_CustomerID ON Orders (CustomerID);

-- The lines of an order, keyed by order and product: a product appears once
-- per order. Deleting an order deletes its lines.
CREATE TABLE OrderDetails (
  OrderID       INTEGER NOT NULL REFERENCES Orders (OrderID) ON DELETE CASCADE,
  ProductID     INTEGER NOT NULL REFERENCES Products (ProductID),
  UnitPrice     NUMERIC(10,2) NOT NULL,
  Quantity      SMALLINT NOT NULL DEFAULT 1,
  Discount      REAL NOT NULL DEFAULT 0,
  PRIMARY KEY (OrderID, ProductID)
);

CREATE TABLE Payments (
  PaymentID     INTEGER PRIMARY KEY,
  OrderID       INTEGER NOT NULL REFERENCES Orders (OrderID),
  PaidAt        DATETIME NOT NULL DEFAULT CURRENT_TIMESTAMP,
  Amount        DECIMAL(10,2) NOT NULL,
  Method        VARCHAR(12) NOT NULL DEFAULT 'card',
  Reference     BIGINT
);

CREATE TABLE ProductReviews (
  ReviewID      INTEGER PRIMARY KEY,
  ProductID     INTEGER NOT NULL REFERENCES Products (ProductID),
  CustomerID    INTEGER NOT NULL REFERENCES Customers (CustomerID),
  Rating        TINYINT NOT NULL,
  Title         VARCHAR(80),
  Body          TEXT,
  ReviewedOn    DATE NOT NULL,
  Verified      BOOLEAN NOT NULL DEFAULT 0
);

-- Views ---------------------------------------------------------------------

-- One row per order with its customer's name and what its lines come to.
CREATE VIEW OrderTotals AS
SELECT o.OrderID,
       o.OrderDate,
       c.FirstName || ' ' || c.LastName AS CustomerName,
       o.Status,
       COUNT(d.ProductID) AS ItemCount,
       ROUND(SUM(d.UnitPrice * d.Quantity * (1 - d.Discount)), 2) AS OrderTotal
FROM Orders o
JOIN Customers c ON c.CustomerID = o.CustomerID
JOIN OrderDetails d ON d.OrderID = o.OrderID
GROUP BY o.OrderID, o.OrderDate, c.FirstName, c.LastName, o.Status;

-- What can still be sold.
CREATE VIEW ActiveProducts AS
SELECT ProductID, ProductName, CategoryID, UnitPrice, UnitsInStock
FROM Products
WHERE Discontinued = 0;

-- Rows ----------------------------------------------------------------------

INSERT INTO Categories (CategoryID, CategoryName, Description, SortOrder) VALUES
  (1, 'Beverages', 'Coffee, tea, juices and soft drinks', 1),
  (2, 'Bakery', 'Bread, cakes and pastries baked each morning', 2),
  (3, 'Dairy', 'Milk, butter, cheese and yoghurt', 3),
  (4, 'Pantry', 'Dry goods, preserves and sauces', 4),
  (5, 'Produce', 'Fresh fruit and vegetables', 5),
  (6, 'Household', NULL, 9);

INSERT INTO Suppliers (SupplierID, CompanyName, ContactName, Phone, City, CountryCode, Rating) VALUES
  (1, 'Hillside Roasters', 'Maya Patel', '+44 161 555 0101', 'Manchester', 'GB', 5),
  (2, 'Northern Mills', 'Tom Ashworth', '+44 113 555 0177', 'Leeds', 'GB', 4),
  (3, 'Green Valley Dairy', 'Sian Evans', '+44 29 5550 0132', 'Cardiff', 'GB', 4),
  (4, 'Costa Verde Foods', 'Luis Romero', '+34 91 555 0190', 'Madrid', 'ES', 3),
  (5, 'CleanHome Supplies', NULL, '+44 20 5550 0144', 'London', 'GB', NULL);

INSERT INTO Products (ProductID, ProductName, SupplierID, CategoryID, SKU, UnitPrice, UnitsInStock, ReorderLevel, WeightKg, Discontinued, AddedOn) VALUES
  (1, 'House Blend Coffee Beans', 1, 1, 'BEV-0001', 8.50, 42, 10, 0.5, 0, '2022-03-01'),
  (2, 'Single Origin Espresso', 1, 1, 'BEV-0002', 11.25, 18, 8, 0.25, 0, '2022-03-01'),
  (3, 'English Breakfast Tea', 1, 1, 'BEV-0003', 3.95, 60, 15, 0.25, 0, '2022-04-12'),
  (4, 'Cloudy Apple Juice', 4, 1, 'BEV-0004', 2.40, 35, 12, 1.0, 0, '2022-06-20'),
  (5, 'Elderflower Cordial', NULL, 1, 'BEV-0005', 4.10, 0, 5, 0.5, 1, '2021-11-05'),
  (6, 'Sourdough Loaf', 2, 2, 'BAK-0001', 3.80, 12, 6, 0.8, 0, '2022-01-15'),
  (7, 'Wholemeal Bread', 2, 2, 'BAK-0002', 2.20, 20, 6, 0.8, 0, '2022-01-15'),
  (8, 'Butter Croissant', 2, 2, 'BAK-0003', 1.35, 30, 10, 0.07, 0, '2022-02-02'),
  (9, 'Lemon Drizzle Cake', 2, 2, 'BAK-0004', 6.75, 4, 2, 0.6, 0, '2023-05-10'),
  (10, 'Whole Milk 2L', 3, 3, 'DAI-0001', 1.65, 48, 20, 2.06, 0, '2021-09-01'),
  (11, 'Salted Butter', 3, 3, 'DAI-0002', 2.10, 25, 10, 0.25, 0, '2021-09-01'),
  (12, 'Mature Cheddar', 3, 3, 'DAI-0003', 4.60, 16, 6, 0.4, 0, '2021-09-01'),
  (13, 'Greek Yoghurt', 3, 3, 'DAI-0004', 2.85, 22, 8, 0.5, 0, '2023-02-14'),
  (14, 'Extra Virgin Olive Oil', 4, 4, 'PAN-0001', 7.90, 14, 5, 0.75, 0, '2022-08-30'),
  (15, 'Spaghetti', 4, 4, 'PAN-0002', 1.45, 70, 20, 0.5, 0, '2022-08-30'),
  (16, 'Chopped Tomatoes', 4, 4, 'PAN-0003', 0.95, 90, 30, 0.4, 0, '2022-08-30'),
  (17, 'Strawberry Jam', NULL, 4, 'PAN-0004', 3.20, 0, 5, 0.34, 1, '2020-06-01'),
  (18, 'Braeburn Apples (6)', 4, 5, 'PRO-0001', 2.50, 24, 10, 1.0, 0, '2023-09-01'),
  (19, 'Vine Tomatoes', 4, 5, 'PRO-0002', 1.99, 18, 10, 0.5, 0, '2023-09-01'),
  (20, 'Washing-up Liquid', 5, 6, 'HOU-0001', 1.75, 33, 10, 0.5, 0, '2022-10-10');

INSERT INTO Customers (CustomerID, CustomerGuid, FirstName, LastName, Email, Phone, Address, City, PostalCode, Country, BirthDate, LoyaltyPoints, IsActive, CreatedAt) VALUES
  (1, '02930c4d-0500-4a34-8664-205d19d51455', 'Alice', 'Morgan', 'alice.morgan@example.com', '+44 7700 900101', '12 Rose Lane', 'Manchester', 'M14 5RT', 'United Kingdom', '1985-04-17', 1250, 1, '2023-01-09 10:15:00'),
  (2, '996de913-f898-493e-a7e1-886a3cccf180', 'Ben', 'Okafor', 'ben.okafor@example.com', '+44 7700 900102', '3 Mill Street', 'Leeds', 'LS1 4AB', 'United Kingdom', '1990-11-02', 480, 1, '2023-01-21 16:40:00'),
  (3, 'c71d2afa-6178-4605-89cd-7a11fd568a12', 'Chloe', 'Davies', 'chloe.davies@example.com', NULL, '88 Castle Road', 'Cardiff', 'CF10 1BH', 'United Kingdom', '1978-06-30', 3020, 1, '2023-02-03 09:05:00'),
  (4, '1af689f9-409a-4631-bba3-c964a468f984', 'Daniel', 'Fischer', 'daniel.fischer@example.de', '+49 30 5550 1234', 'Kastanienallee 7', 'Berlin', '10435', 'Germany', NULL, 90, 1, '2023-02-18 12:00:00'),
  (5, '0a541244-53aa-4845-a316-745553b1d685', 'Emma', 'Walsh', 'emma.walsh@example.com', '+44 7700 900105', '21 Harbour View', 'Liverpool', 'L3 4AF', 'United Kingdom', '1995-01-23', 0, 0, '2023-03-02 08:30:00'),
  (6, '5075f999-dd43-4046-81e1-6548d2d89a2b', 'Farid', 'Hassan', 'farid.hassan@example.com', '+44 7700 900106', '5 Elm Court', 'Manchester', 'M1 2JQ', 'United Kingdom', '1988-09-14', 760, 1, '2023-03-15 19:22:00'),
  (7, 'accddf4a-ec55-49f4-8831-c2ab0389e401', 'Grace', 'Lin', 'grace.lin@example.com', NULL, NULL, 'London', NULL, 'United Kingdom', NULL, 150, 1, '2023-04-01 11:11:00'),
  (8, '4a1d7e1e-7030-415c-9999-71effcc332d8', 'Hugo', 'Martin', 'hugo.martin@example.fr', '+33 1 55 50 12 34', '14 rue des Lilas', 'Lyon', '69003', 'France', '1982-12-05', 2200, 1, '2023-04-27 14:45:00'),
  (9, 'a49ee2be-66cb-4a81-ab6e-f0e1f90d0a78', 'Isla', 'Campbell', 'isla.campbell@example.com', '+44 7700 900109', '2 Thistle Way', 'Edinburgh', 'EH3 9DR', 'United Kingdom', '2000-07-08', 35, 1, '2023-05-12 17:05:00'),
  (10, '6cadc354-4083-4636-9db6-74983ef22478', 'Jack', 'Turner', 'jack.turner@example.com', '+44 7700 900110', '40 Station Road', 'Leeds', 'LS6 2UE', 'United Kingdom', '1973-03-19', 5400, 1, '2023-06-06 10:00:00'),
  (11, '8839bf6b-6e2e-4aac-97ca-f89edc399aa7', 'Katarzyna', 'Nowak', 'k.nowak@example.pl', '+48 22 555 01 23', 'ul. Polna 9', 'Warsaw', '00-625', 'Poland', '1992-10-27', 310, 1, '2023-07-19 13:30:00'),
  (12, '7539033f-b934-4774-a681-7817291f04b7', 'Liam', 'O''Brien', 'liam.obrien@example.ie', NULL, '7 Quay Street', 'Galway', 'H91 X2Y3', 'Ireland', NULL, 0, 1, '2023-08-08 09:50:00');

-- The photos are small solid-colour PNG images.
INSERT INTO Employees (EmployeeID, FirstName, LastName, Title, ReportsTo, HireDate, ShiftStart, HourlyRate, Photo, Notes) VALUES
  (1, 'Rachel', 'Green', 'Owner', NULL, '2015-02-01', '08:00:00', NULL,
   X'89504E470D0A1A0A0000000D494844520000001000000010080200000090916836000000164944415478DA6370CB5B40126218D530AA61F86A0000678854101B60D5A20000000049454E44AE426082',
   'Founded the shop in 2015.'),
  (2, 'Owen', 'Price', 'Store Manager', 1, '2016-05-16', '08:00:00', 18.50,
   X'89504E470D0A1A0A0000000D494844520000001000000010080200000090916836000000164944415478DA6358106043126218D530AA61F86A0000E1F52C10259AEDD10000000049454E44AE426082',
   'Runs the Manchester store.'),
  (3, 'Priya', 'Shah', 'Store Manager', 1, '2018-09-03', '09:00:00', 18.50,
   X'89504E470D0A1A0A0000000D494844520000001000000010080200000090916836000000164944415478DA6308E8892209318C6A18D5307C350000C4D636106634B0800000000049454E44AE426082',
   'Runs the Leeds store and the online orders.'),
  (4, 'Sam', 'Brooks', 'Sales Assistant', 2, '2020-03-09', '07:30:00', 11.80,
   X'89504E470D0A1A0A0000000D494844520000001000000010080200000090916836000000164944415478DA6338B1C08624C430AA6154C3F0D50000D4BDA4101BAE79F50000000049454E44AE426082',
   NULL),
  (5, 'Tara', 'Quinn', 'Sales Assistant', 3, '2021-06-14', '12:00:00', 11.80,
   X'89504E470D0A1A0A0000000D494844520000001000000010080200000090916836000000164944415478DA63A8889A46126218D530AA61F86A00004559681040EF27A10000000049454E44AE426082',
   'Weekend shifts.'),
  (6, 'Victor', 'Adeyemi', 'Delivery Driver', 3, '2022-11-28', '06:30:00', 12.40,
   NULL,
   'Holds a van licence.');

INSERT INTO Shippers (ShipperID, CompanyName, Phone, TrackingUrl) VALUES
  (1, 'Swift Parcels', '+44 20 5550 0900', 'https://track.example.com/swift/'),
  (2, 'Royal Post', '+44 345 555 0740', 'https://track.example.com/royal/'),
  (3, 'Own van', NULL, NULL);

INSERT INTO Stores (StoreID, StoreName, City, OpensAt, ClosesAt, ManagerID) VALUES
  (1, 'Corner Shop Didsbury', 'Manchester', '07:00:00', '21:00:00', 2),
  (2, 'Corner Shop Headingley', 'Leeds', '08:00:00', '20:00:00', 3),
  (3, 'Warehouse', 'Leeds', '06:00:00', '14:00:00', NULL);

INSERT INTO Inventory (StoreID, ProductID, Quantity, LastCounted) VALUES
  (1, 1, 14, '2024-03-01 07:30:00'),
  (1, 3, 25, '2024-03-01 07:30:00'),
  (1, 6, 6, '2024-03-01 07:30:00'),
  (1, 8, 18, '2024-03-01 07:30:00'),
  (1, 10, 20, '2024-03-01 07:30:00'),
  (1, 12, 8, '2024-03-01 07:30:00'),
  (1, 15, 30, '2024-03-01 07:30:00'),
  (2, 1, 10, '2024-03-02 08:10:00'),
  (2, 2, 6, '2024-03-02 08:10:00'),
  (2, 4, 15, '2024-03-02 08:10:00'),
  (2, 7, 12, '2024-03-02 08:10:00'),
  (2, 11, 10, '2024-03-02 08:10:00'),
  (2, 13, 9, '2024-03-02 08:10:00'),
  (2, 18, 12, '2024-03-02 08:10:00'),
  (3, 1, 18, '2024-02-28 06:15:00'),
  (3, 14, 14, '2024-02-28 06:15:00'),
  (3, 16, 90, '2024-02-28 06:15:00'),
  (3, 20, 33, NULL);

INSERT INTO Orders (OrderID, CustomerID, EmployeeID, OrderDate, RequiredDate, ShippedDate, ShipperID, Freight, Status, ShipCity, Comments) VALUES
  (1001, 1, 4, '2024-01-04 09:12:00', '2024-01-06', '2024-01-05', 3, 2.50, 'delivered', 'Manchester', NULL),
  (1002, 3, 5, '2024-01-05 14:30:00', '2024-01-09', '2024-01-06', 2, 4.95, 'delivered', 'Cardiff', 'Leave with neighbour if out.'),
  (1003, 2, 5, '2024-01-11 10:05:00', '2024-01-13', '2024-01-12', 3, 2.50, 'delivered', 'Leeds', NULL),
  (1004, 10, 4, '2024-01-19 17:48:00', '2024-01-22', '2024-01-20', 1, 3.75, 'delivered', 'Leeds', NULL),
  (1005, 8, 5, '2024-01-27 08:20:00', '2024-02-03', '2024-01-29', 2, 12.00, 'delivered', 'Lyon', 'International delivery.'),
  (1006, 1, 4, '2024-02-02 11:00:00', '2024-02-04', '2024-02-03', 3, 2.50, 'delivered', 'Manchester', NULL),
  (1007, 6, 4, '2024-02-09 16:35:00', '2024-02-11', '2024-02-10', 3, 2.50, 'delivered', 'Manchester', NULL),
  (1008, 4, 5, '2024-02-14 09:00:00', '2024-02-21', '2024-02-16', 2, 12.00, 'delivered', 'Berlin', NULL),
  (1009, 9, 5, '2024-02-20 13:15:00', '2024-02-24', '2024-02-22', 1, 5.50, 'delivered', 'Edinburgh', NULL),
  (1010, 3, 5, '2024-02-26 10:40:00', '2024-02-29', '2024-02-27', 2, 4.95, 'delivered', 'Cardiff', NULL),
  (1011, 10, 4, '2024-03-01 18:02:00', '2024-03-04', '2024-03-02', 1, 3.75, 'shipped', 'Leeds', NULL),
  (1012, 11, 5, '2024-03-03 07:55:00', '2024-03-10', NULL, NULL, 12.00, 'paid', 'Warsaw', 'Gift wrap, please.'),
  (1013, 7, NULL, '2024-03-04 20:19:00', '2024-03-07', NULL, NULL, 0, 'new', 'London', NULL),
  (1014, 12, NULL, '2024-03-05 12:44:00', NULL, NULL, NULL, 0, 'new', 'Galway', NULL),
  (1015, 2, 4, '2024-03-05 15:10:00', '2024-03-07', NULL, 3, 2.50, 'paid', 'Leeds', NULL),
  (1016, 5, NULL, '2024-03-06 09:30:00', NULL, NULL, NULL, 0, 'cancelled', 'Liverpool', 'Customer closed the account.');

-- Each line keeps the price of the day it was ordered.
INSERT INTO OrderDetails (OrderID, ProductID, UnitPrice, Quantity, Discount) VALUES
  (1001, 1, 8.50, 2, 0),
  (1001, 8, 1.35, 4, 0),
  (1001, 10, 1.65, 1, 0),
  (1002, 3, 3.95, 3, 0),
  (1002, 12, 4.60, 1, 0),
  (1002, 14, 7.90, 1, 0.1),
  (1003, 6, 3.80, 1, 0),
  (1003, 11, 2.10, 2, 0),
  (1004, 2, 11.25, 2, 0.05),
  (1004, 9, 6.75, 1, 0),
  (1004, 15, 1.45, 4, 0),
  (1004, 16, 0.95, 6, 0),
  (1005, 1, 8.50, 4, 0.1),
  (1005, 14, 7.90, 2, 0.1),
  (1006, 7, 2.20, 1, 0),
  (1006, 10, 1.65, 2, 0),
  (1006, 13, 2.85, 2, 0),
  (1007, 4, 2.40, 3, 0),
  (1007, 18, 2.50, 1, 0),
  (1007, 19, 1.99, 2, 0),
  (1008, 2, 11.25, 1, 0),
  (1008, 3, 3.95, 2, 0),
  (1009, 12, 4.60, 2, 0),
  (1009, 6, 3.80, 1, 0),
  (1009, 20, 1.75, 1, 0),
  (1010, 1, 8.50, 1, 0),
  (1010, 13, 2.85, 3, 0),
  (1011, 2, 11.25, 1, 0),
  (1011, 15, 1.45, 6, 0),
  (1011, 16, 0.95, 6, 0),
  (1011, 14, 7.90, 1, 0),
  (1012, 9, 6.75, 2, 0),
  (1012, 3, 3.95, 1, 0),
  (1013, 8, 1.35, 6, 0),
  (1013, 11, 2.10, 1, 0),
  (1014, 1, 8.50, 1, 0),
  (1015, 7, 2.20, 2, 0),
  (1015, 10, 1.65, 2, 0),
  (1015, 18, 2.50, 1, 0),
  (1016, 5, 4.10, 2, 0);

-- Paid and later orders have one payment each: the lines and the freight.
INSERT INTO Payments (OrderID, PaidAt, Amount, Method, Reference)
WITH p (OrderID, PaidAt, Method, Reference) AS (VALUES
        (1001, '2024-01-04 09:13:00', 'card', 400188120001),
        (1002, '2024-01-05 14:31:00', 'card', 400188120002),
        (1003, '2024-01-11 10:06:00', 'cash', NULL),
        (1004, '2024-01-19 17:49:00', 'card', 400188120004),
        (1005, '2024-01-27 08:22:00', 'transfer', 902211450005),
        (1006, '2024-02-02 11:01:00', 'cash', NULL),
        (1007, '2024-02-09 16:36:00', 'card', 400188120007),
        (1008, '2024-02-14 09:02:00', 'transfer', 902211450008),
        (1009, '2024-02-20 13:16:00', 'card', 400188120009),
        (1010, '2024-02-26 10:41:00', 'card', 400188120010),
        (1011, '2024-03-01 18:03:00', 'card', 400188120011),
        (1012, '2024-03-03 07:56:00', 'transfer', 902211450012),
        (1015, '2024-03-05 15:11:00', 'cash', NULL))
SELECT t.OrderID, p.PaidAt, ROUND(t.OrderTotal + o.Freight, 2), p.Method, p.Reference
FROM p
JOIN OrderTotals t ON t.OrderID = p.OrderID
JOIN Orders o ON o.OrderID = p.OrderID
ORDER BY p.OrderID;

INSERT INTO ProductReviews (ProductID, CustomerID, Rating, Title, Body, ReviewedOn, Verified) VALUES
  (1, 1, 5, 'Our everyday coffee', 'Smooth, not bitter, and the beans stay fresh for weeks.', '2024-01-15', 1),
  (1, 8, 4, 'Good value', 'A little dark for me, but excellent in a cafetière.', '2024-02-05', 1),
  (2, 10, 5, 'Proper espresso', NULL, '2024-01-28', 1),
  (6, 2, 5, 'Best sourdough in Leeds', 'Crisp crust, open crumb.', '2024-01-14', 1),
  (9, 10, 3, 'Nice but small', 'Tasty, though it did not feed six.', '2024-01-25', 1),
  (12, 3, 4, 'Sharp and crumbly', NULL, '2024-01-10', 1),
  (14, 5, 2, 'Arrived leaking', 'The bottle cap was loose.', '2024-02-11', 0),
  (16, 10, 4, 'Store cupboard staple', NULL, '2024-01-30', 1),
  (18, 6, 5, 'Crunchy', 'Exactly what you want in an apple.', '2024-02-15', 1),
  (20, 9, 3, 'Does the job', NULL, '2024-02-28', 1);

COMMIT;
