#pragma once

#include "support/ink_room.h"

namespace vellumark::test {

/// A room with something of everything, all of it sound.
struct FullRoom : InkRoom {
  FullRoom() {
    Basic("RED", {{"Inventory", 12.5F}, {"PurchaseCost", 4.0F}, {"VOC", 0.5F}});
    Basic("WAX");
    Mix("PINK", {{"RED", 95}, {"WAX", 5}}, {{"Inventory", 3.0F}, {"AddSetName", "SLOW"}});
    AddRow(schema::BasicLotInv,
           {{"LotRefID", 1}, {"LotCName", "RED"}, {"LotNumber", "L1"}, {"LotQty", 7.25F}, {"LotPrice", 4.0F}});
    AddRow(schema::BasicLab, {{"Color_Name", "RED"}, {"Lab_L", 50.0F}});
    AddRow(schema::Additives,
           {{"SetName", "SLOW"}, {"SetList", "<WAX>"}, {"Add_Name0", "WAX"}, {"Add_Percent0", 5.0F}});
    AddRow(schema::Batch, {{"Color_Name", "PINK"},
                           {"BatchNo", 7},
                           {"ActualQuantity", 5.0F},
                           {"UMF", 1},
                           {"IngName0", "RED"},
                           {"IngQty0", 1.0F},
                           {"IngType0", 1},
                           {"JobNumber", "J1"}});
    AddRow(
        schema::BatchLotInv,
        {{"BatchNo", 7}, {"IngName", "RED"}, {"IngType", 1}, {"LotRefID", 1}, {"LotNumber", "L1"}, {"LotQty", 1.0F}});
    AddRow(schema::JobRecords, {{"JobNumber", "J1"}, {"Database", "INK"}, {"BatchNo", 7}, {"ItemType", 2}});
    AddRow(schema::Designs, {{"DesignID", "D"}, {"IngSet", "<RED>"}, {"IngName0", "RED"}, {"IngDB0", "INK"}});
  }
};

}  // namespace vellumark::test
