// SPDX-License-Identifier: Apache-2.0
// XML beside the events of expat, which builds nothing, and the tree of pugixml, which converts nothing.
#include "data_bench.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_reader.h"
#include "kernel/lists/lists.h"

#include <cstdio>
#include <expat.h>
#include <pugixml.hpp>

namespace bench {

using namespace tarn;

namespace {

// ---- here ----

void readBare(benchmark::State& state, const std::string& path) {
    repeat(state, [&] { return XmlRead(path, 0, nullptr, KindNone, nullptr, 0).code == 0; });
    setBytes(state, sizeOf(path));
}
void readTypes(benchmark::State& state, const std::string& path) {
    std::string text;
    repeat(state, [&] { return XmlRead(path, 0, nullptr, KindNone, &text, MaxTypeInfo).code == 0; });
    setBytes(state, sizeOf(path));
}
void readList(benchmark::State& state, const std::string& path, const std::string& declaration) {
    ListValue list;
    initList(list.get(), declaration);
    const auto load = [&] {
        const XmlResult result = XmlLoad(path, list.get(), KindList);
        return result.error.code == 0 && result.count > 0;
    };
    repeat(state, load, [&] { ListClear(list.get()); });
    setBytes(state, sizeOf(path));
}
void readTable(benchmark::State& state, const std::string& path) {
    TableValue table;
    initTable(table.get(), orderDeclaration, static_cast<std::int32_t>(state.range(0)));
    const auto load = [&] {
        const XmlResult result = XmlLoad(path, table.get(), KindTable);
        return result.error.code == 0 && result.count == OrderRows;
    };
    repeat(state, load, [&] { TableClear(table.get()); });
    setBytes(state, sizeOf(path));
}

class Counts : public XmlEvents {
public:
    void start(std::string_view, std::int32_t) override { ++elements; }
    void attribute(std::string_view, std::string_view) override {}
    void text(std::string_view part) override { characters += part.size(); }
    void end() override {}
    std::size_t elements = 0, characters = 0;
};

void walk(benchmark::State& state, const std::string& path) {
    XmlReader reader;
    repeat(state, [&] {
        Counts counts;
        return reader.walk(path, counts).error.code == 0 && counts.elements > OrderRows;
    });
    setBytes(state, sizeOf(path));
}
void xmlEventsKernel(benchmark::State& state) {
    walk(state, ordersXml());
}
void xmlAttributeEventsKernel(benchmark::State& state) {
    walk(state, ordersXmlAttributes());
}
void xmlBareKernel(benchmark::State& state) {
    readBare(state, ordersXml());
}
void xmlTypesKernel(benchmark::State& state) {
    readTypes(state, ordersXml());
}
void xmlListKernel(benchmark::State& state) {
    readList(state, ordersXml(), orderDeclaration);
}
void xmlTableKernel(benchmark::State& state) {
    readTable(state, ordersXml());
}
void xmlAttributesKernel(benchmark::State& state) {
    readList(state, ordersXmlAttributes(), orderDeclaration);
}

void xmlSaveKernel(benchmark::State& state) {
    ListValue list;
    initList(list.get(), orderDeclaration);
    XmlLoad(ordersXml(), list.get(), KindList);
    const std::string path = pathOf("saved.xml");
    repeat(state, [&] { return XmlSave(path, 0, list.get(), KindList).error.code == 0; });
    setBytes(state, sizeOf(path));
}

// ---- peers ----

struct Seen {
    std::int64_t elements = 0, characters = 0;
};

bool eventsOf(const std::string& path, Seen& seen) {
    constexpr int block = 65536;
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &seen);
    XML_SetElementHandler(
        parser, [](void* data, const XML_Char*, const XML_Char**) { ++static_cast<Seen*>(data)->elements; },
        [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void* data, const XML_Char*, int count) {
        static_cast<Seen*>(data)->characters += count;
    });
    std::FILE* const in = std::fopen(path.c_str(), "rb");
    bool good = in != nullptr;
    for (bool last = false; good && !last;) {
        const std::size_t got = std::fread(XML_GetBuffer(parser, block), 1, block, in);
        last = got < block;
        good = XML_ParseBuffer(parser, static_cast<int>(got), last) == XML_STATUS_OK;
    }
    if (in != nullptr) std::fclose(in);
    XML_ParserFree(parser);
    return good && seen.elements > OrderRows;
}

void eventsExpat(benchmark::State& state, const std::string& path) {
    repeat(state, [&] {
        Seen seen;
        return eventsOf(path, seen);
    });
    setBytes(state, sizeOf(path));
}
void xmlEventsExpat(benchmark::State& state) {
    eventsExpat(state, ordersXml());
}
void xmlAttributesExpat(benchmark::State& state) {
    eventsExpat(state, ordersXmlAttributes());
}
void xmlTreePugi(benchmark::State& state) {
    const std::string path = ordersXml();
    pugi::xml_document tree;
    repeat(
        state, [&] { return static_cast<bool>(tree.load_file(path.c_str())); }, [&] { tree.reset(); });
    setBytes(state, sizeOf(path));
}
void xmlSavePugi(benchmark::State& state) {
    ListValue list;
    initList(list.get(), orderDeclaration);
    XmlLoad(ordersXml(), list.get(), KindList);
    const std::string from = pathOf("saved.xml"), to = pathOf("pugi.xml");
    XmlSave(from, 0, list.get(), KindList);
    pugi::xml_document tree;
    tree.load_file(from.c_str());
    repeat(state, [&] { return tree.save_file(to.c_str(), "  "); });
    setBytes(state, sizeOf(to));
}

BENCHMARK(xmlBareKernel);
BENCHMARK(xmlEventsKernel);
BENCHMARK(xmlTypesKernel);
BENCHMARK(xmlListKernel);
BENCHMARK(xmlTableKernel)->Arg(0)->Arg(1);
BENCHMARK(xmlEventsExpat);
BENCHMARK(xmlTreePugi);
BENCHMARK(xmlAttributesKernel);
BENCHMARK(xmlAttributeEventsKernel);
BENCHMARK(xmlAttributesExpat);
BENCHMARK(xmlSaveKernel);
BENCHMARK(xmlSavePugi);

// ---- growing files ----

void xmlBareLinear(benchmark::State& state) {
    readBare(state, wideXml(state.range(0)));
}
void xmlListLinear(benchmark::State& state) {
    readList(state, wideXml(state.range(0)), wideDeclaration);
}
BENCHMARK(xmlBareLinear)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(xmlListLinear)->Arg(1)->Arg(10)->Arg(100);

}  // namespace

}  // namespace bench
