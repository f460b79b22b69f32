// SPDX-License-Identifier: Apache-2.0
// Xbase files beside shapelib: 6 fields into values of the program's own types and back.
#include "data_bench.h"

#include "kernel/data/xbase/xbase.h"
#include "kernel/lists/lists.h"

#include <shapefil.h>

namespace bench {

using namespace tarn;

namespace {

const std::string declaration = "Torder : record\n"
                                "\tid : integer\n"
                                "\tname : string[15]\n"
                                "\ttown : string[8]\n"
                                "\tamount : fixed\n"
                                "\tpieces : integer\n"
                                "\tpaid : boolean\n"
                                "end record\n";
const std::string fields = "id : integer\nname : string\ntown : string\namount : fixed\npieces : integer\n"
                           "paid : boolean\n";

struct PlainOrder {
    std::int32_t id, pieces;
    std::string name, town;
    double amount;
    bool paid;
};
std::vector<PlainOrder> plainOrders() {
    std::vector<PlainOrder> orders;
    for (std::int32_t i = 1; i <= OrderRows; ++i) {
        const Order o = orderNumber(i);
        orders.push_back({o.id, o.pieces, o.name, o.town, std::stod(o.amount), o.paid == "True"});
    }
    return orders;
}

bool writeShapelib(const std::string& path, const std::vector<PlainOrder>& orders) {
    DBFHandle file = DBFCreate(path.c_str());
    if (file == nullptr) return false;
    DBFAddField(file, "id", FTInteger, 12, 0);
    DBFAddField(file, "name", FTString, 15, 0);
    DBFAddField(file, "town", FTString, 8, 0);
    DBFAddField(file, "amount", FTDouble, 20, 4);
    DBFAddField(file, "pieces", FTInteger, 12, 0);
    DBFAddField(file, "paid", FTLogical, 1, 0);
    int row = 0;
    bool good = true;
    for (const PlainOrder& o : orders) {
        good = good && DBFWriteIntegerAttribute(file, row, 0, o.id) != 0 &&
               DBFWriteStringAttribute(file, row, 1, o.name.c_str()) != 0 &&
               DBFWriteStringAttribute(file, row, 2, o.town.c_str()) != 0 &&
               DBFWriteDoubleAttribute(file, row, 3, o.amount) != 0 &&
               DBFWriteIntegerAttribute(file, row, 4, o.pieces) != 0 &&
               DBFWriteLogicalAttribute(file, row, 5, o.paid ? 'T' : 'F') != 0;
        ++row;
    }
    DBFClose(file);
    return good;
}

bool readShapelib(const std::string& path, std::vector<PlainOrder>& orders) {
    DBFHandle file = DBFOpen(path.c_str(), "rb");
    if (file == nullptr) return false;
    const int rows = DBFGetRecordCount(file);
    for (int row = 0; row < rows; ++row)
        orders.push_back({DBFReadIntegerAttribute(file, row, 0), DBFReadIntegerAttribute(file, row, 4),
                          DBFReadStringAttribute(file, row, 1), DBFReadStringAttribute(file, row, 2),
                          DBFReadDoubleAttribute(file, row, 3),
                          DBFReadLogicalAttribute(file, row, 5)[0] == 'T'});
    DBFClose(file);
    return rows == OrderRows;
}

std::string ordersXbase() {
    const std::string path = pathOf("orders.dbf");
    fileOf("orders.dbf.made", [&] { return writeShapelib(path, plainOrders()) ? "1" : ""; });
    return path;
}

void xbaseReadKernel(benchmark::State& state) {
    const std::string path = ordersXbase();
    ListValue list;
    initList(list.get(), declaration);
    std::string message;
    const auto load = [&] {
        const DataResult result = XbaseLoad(path, list.get(), KindList, message);
        return result.code == 0 && result.rows == OrderRows;
    };
    repeat(state, load, [&] { ListClear(list.get()); });
    setRows(state, OrderRows);
}
void xbaseReadShapelib(benchmark::State& state) {
    const std::string path = ordersXbase();
    std::vector<PlainOrder> orders;
    repeat(
        state, [&] { return readShapelib(path, orders); }, [&] { orders.clear(); });
    setRows(state, OrderRows);
}
void xbaseWriteKernel(benchmark::State& state) {
    ListValue list;
    initList(list.get(), declaration);
    std::string message;
    XbaseLoad(ordersXbase(), list.get(), KindList, message);
    const std::string path = pathOf("saved.dbf");
    const auto save = [&] {
        const DataResult result = XbaseSave(path, list.get(), KindList, fields);
        return result.code == 0 && result.rows == OrderRows;
    };
    repeat(state, save);
    setRows(state, OrderRows);
}
void xbaseWriteShapelib(benchmark::State& state) {
    const std::vector<PlainOrder> orders = plainOrders();
    const std::string path = pathOf("shapelib.dbf");
    repeat(state, [&] { return writeShapelib(path, orders); });
    setRows(state, OrderRows);
}
BENCHMARK(xbaseReadKernel);
BENCHMARK(xbaseReadShapelib);
BENCHMARK(xbaseWriteKernel);
BENCHMARK(xbaseWriteShapelib);

}  // namespace

}  // namespace bench
