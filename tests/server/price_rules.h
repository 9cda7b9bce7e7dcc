// The items, measures, prices, discounts and rates that the price tests look up. P a piece at 1 base unit, B a box of
// 12, K a crate of 24. Contractor C1 has a price of his own, C2 belongs to a price group, C3 to none.
#pragma once

namespace kalvor::testing {

inline constexpr const char* priceRules = R"(
INSERT INTO N_Measure (Id, Comp_Id, Code, Name) VALUES ('P', '1', 'П', 'Парче'), ('B', '1', 'Б', 'Кутия'),
  ('K', '1', 'К', 'Каса'), ('H', '1', 'Х', 'Чужда');
INSERT INTO N_ItemGroup (Id, Comp_Id, Code, Name, Parent_Id) VALUES ('G1', '1', 'G1', 'Горна', NULL),
  ('G2', '1', 'G2', 'Долна', 'G1'), ('GX', '1', 'GX', 'Кръг', 'GY'), ('GY', '1', 'GY', 'Кръг', 'GX');
INSERT INTO N_Item (Id, Comp_Id, Code, Name, Type, Measure_Id, ItemGroup_Id, VATProdPostGroup_Id, UnitPrice, UnitCost)
VALUES ('I1', '1', 'СПИСЪК', 'x', 1, 'P', 'G2', 'VP', 10000000, 6000000),
  ('I2', '1', 'БЛИЗО', 'x', 1, 'P', 'G1', 'VP', 10000000, NULL),
  ('I3', '1', 'СТЪПКИ', 'x', 1, 'P', 'GX', 'VP', 0, NULL),
  ('I4', '1', 'СРОКОВЕ', 'x', 1, 'P', NULL, 'VP', 10000000, NULL),
  ('I5', '1', 'КУТИЯ', 'x', 1, 'P', NULL, 'VP', NULL, NULL),
  ('I6', '1', 'С ДДС', 'x', 1, 'P', NULL, 'VP', NULL, NULL),
  ('I7', '1', 'ВАЛУТА', 'x', 1, 'P', NULL, 'VP', NULL, NULL),
  ('I8', '1', 'БЕЗ ЦЕНА', 'x', 1, 'P', NULL, 'VP', NULL, 0),
  ('I9', '1', 'ОФЕРТА', 'x', 1, 'P', 'G2', 'VP', 10000000, NULL),
  ('X1', '2', 'ЧУЖД', 'x', 1, 'P', NULL, 'VP', 10000000, 6000000);
INSERT INTO N_ItemMeasure (Id, Comp_Id, Item_Id, Measure_Id, QtyPerUnitOfMeasure)
SELECT Id || 'P', Comp_Id, Id, 'P', 1000000 FROM N_Item WHERE Measure_Id = 'P' UNION ALL
SELECT Id || 'B', Comp_Id, Id, 'B', 12000000 FROM N_Item WHERE Measure_Id = 'P' UNION ALL
SELECT Id || 'K', Comp_Id, Id, 'K', 24000000 FROM N_Item WHERE Measure_Id = 'P';
INSERT INTO N_PriceGroup (Id, Comp_Id, Code, Name) VALUES ('PG', '1', 'PG', 'Група');
INSERT INTO N_Contragent (Id, Comp_Id, Code, Name, PriceGroup_Id) VALUES ('C1', '1', 'C1', 'x', 'PG'),
  ('C2', '1', 'C2', 'x', 'PG'), ('C3', '1', 'C3', 'x', NULL), ('CX', '2', 'CX', 'x', 'PG');
INSERT INTO N_SubDocument (Id, Comp_Id, Code, Name, Series_Id, Post_Series_Id) VALUES
  ('SD', '1', 'ПРОФ', 'x', 'S-1', 'S-2');
INSERT INTO G_VATPostingSetup (Id, Comp_Id, VATBus_PostingGroup, VATProd_PostingGroup, VATPercent, VATCalculationType,
  SalesVATLedger) VALUES ('V1', '1', 'VB', 'VP', 20000000, 1, 2), ('V2', '1', 'VB', 'VP9', 9000000, 0, 1);
INSERT INTO N_CurrencyRate (Id, Comp_Id, Currency_Id, RateDate, Kind, Rate) VALUES
  ('R1', '1', 'XTS', '20260101', 0, 2000000), ('R2', '1', 'XTS', '20260110', 0, 2500000),
  ('R3', '1', 'XTS', '20260101', 1, 3000000), ('R4', '2', 'XAU', '20260101', 0, 7000000);

INSERT INTO N_ItemPrice (Id, Comp_Id, Side, Item_Id, Contragent_Id, PriceGroup_Id, Measure_Id, Currency_Id, MinQuantity,
  StartDate, EndDate, UnitPrice, PriceIncludingVAT, AllowInvoiceDisc) VALUES
  ('N1', '1', 1, 'I2', NULL, NULL, 'P', NULL, 0, NULL, NULL, 9000000, 0, 1),
  ('N2', '1', 1, 'I2', NULL, 'PG', 'P', NULL, 0, NULL, NULL, 8000000, 0, 0),
  ('N3', '1', 1, 'I2', 'C1', NULL, 'P', NULL, 0, NULL, NULL, 7000000, 0, 1),
  ('N4', '1', 1, 'I2', 'C1', NULL, 'P', NULL, 50000000, NULL, NULL, 6500000, 0, 1),
  ('N5', '1', 0, 'I2', NULL, NULL, 'P', NULL, 0, NULL, NULL, 5000000, 0, 1),
  ('N6', '1', 0, 'I2', 'C1', NULL, 'P', NULL, 0, NULL, NULL, 4500000, 0, 1),
  ('S1', '1', 1, 'I3', NULL, NULL, 'P', NULL, 0, NULL, NULL, 10000000, 0, 1),
  ('S2', '1', 1, 'I3', NULL, NULL, 'P', NULL, 10000000, NULL, NULL, 9000000, 0, 1),
  ('S3', '1', 1, 'I3', NULL, NULL, 'P', NULL, 100000000, NULL, NULL, 8000000, 0, 1),
  ('D1', '1', 1, 'I4', NULL, NULL, 'P', NULL, 0, '20260101', '20260131', 9000000, 0, 1),
  ('D2', '1', 1, 'I4', NULL, NULL, 'P', NULL, 0, '20260115', '20260120', 8500000, 0, 1),
  ('D3', '1', 1, 'I4', NULL, NULL, 'P', NULL, 0, '20260630', NULL, 8000000, 0, 1),
  ('B1', '1', 1, 'I5', NULL, NULL, 'P', NULL, 0, NULL, NULL, 1000000, 0, 1),
  ('B2', '1', 1, 'I5', NULL, NULL, 'B', NULL, 0, NULL, NULL, 11000000, 0, 0),
  ('B3', '1', 1, 'I5', NULL, NULL, 'B', NULL, 10000000, NULL, NULL, 10800000, 0, 1),
  ('B4', '1', 1, 'I5', NULL, NULL, 'P', NULL, 100000000, NULL, NULL, 900000, 0, 1),
  ('W1', '1', 1, 'I6', NULL, NULL, 'P', NULL, 0, NULL, NULL, 120000000, 1, 1),
  ('W2', '1', 1, 'I6', 'C1', NULL, 'P', NULL, 0, NULL, NULL, 999990, 1, 1),
  ('U1', '1', 1, 'I7', NULL, NULL, 'P', 'XTS', 0, NULL, NULL, 10000000, 0, 1),
  ('U2', '1', 1, 'I7', 'C1', NULL, 'P', 'ZZZ', 0, NULL, NULL, 10000000, 0, 1),
  ('U3', '1', 1, 'I7', 'C2', NULL, 'P', NULL, 0, NULL, NULL, 1000005, 0, 1);

INSERT INTO N_ItemDiscount (Id, Comp_Id, Side, Item_Id, ItemGroup_Id, Contragent_Id, PriceGroup_Id, SubDocument_Id,
  Measure_Id, MinQuantity, StartDate, EndDate, DiscountPercent, SpecialPrice) VALUES
  ('A1', '1', 1, NULL, 'G1', NULL, NULL, NULL, NULL, 0, NULL, NULL, 1000000, NULL),
  ('A2', '1', 1, NULL, 'G2', NULL, NULL, NULL, NULL, 24000000, NULL, NULL, 2000000, NULL),
  ('A3', '1', 1, 'I1', NULL, NULL, NULL, NULL, 'B', 3000000, NULL, NULL, 3000000, NULL),
  ('A4', '1', 1, 'I1', NULL, NULL, NULL, 'SD', NULL, 0, NULL, NULL, 4000000, NULL),
  ('A5', '1', 1, NULL, 'G1', NULL, 'PG', NULL, NULL, 0, NULL, NULL, 5000000, 0),
  ('A6', '1', 1, 'I1', NULL, 'C1', NULL, NULL, NULL, 0, '20260101', '20260131', 6500000, NULL),
  ('A7', '1', 1, 'I2', NULL, 'C1', NULL, NULL, NULL, 0, NULL, NULL, 0, NULL),
  ('A8', '1', 0, NULL, 'G1', NULL, NULL, NULL, NULL, 5000000, NULL, NULL, 7000000, 9000000),
  ('A9', '1', 1, 'I9', NULL, NULL, NULL, NULL, 'B', 0, NULL, NULL, 0, 96000000),
  ('AA', '1', 1, 'I9', NULL, NULL, NULL, NULL, NULL, 0, NULL, NULL, 5000000, 12500000),
  ('AB', '1', 1, NULL, 'GX', NULL, NULL, NULL, NULL, 0, NULL, NULL, 8000000, NULL);
)";

}  // namespace kalvor::testing
