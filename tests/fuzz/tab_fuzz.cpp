// SPDX-License-Identifier: Apache-2.0
// Delimited text: any file has columns or a message, the columns that were found can be loaded, and every
// value is whole after it was loaded, and after it was saved and loaded once more. The first byte chooses the
// separator, the header rows, the footer rows and a limit of rows.
#include "kernel/data/datafile.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

using namespace tarn;

const std::string file = "/tmp/tarnwick-fuzz-tab-" + std::to_string(getpid()), copy = file + "-copy";

void require(bool holds) {
    if (!holds) std::abort();
}

bool write(const std::string& bytes) {
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return false;
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    return std::fclose(out) == 0;
}

DataOptions optionsOf(std::uint8_t choice) {
    constexpr std::int32_t separators[] = {',', '\t', ';', 1, ' ', '\r', '-', '['};
    return {choice >> 3 & 3, choice >> 5 & 3, separators[choice & 7], choice >= 128 ? 3 : -1};
}

void load(Kind kind, const std::string& declaration, const DataOptions& options, bool again) {
    alignas(8) char value[sizeof(ArrayDescriptor)] = {};
    std::size_t position = 0;
    require(TypeInfoToValue(declaration, position, value) == kind);
    require(TabLoad(file, options, value, kind).code != 651);
    require(AdtCheck(value, kind).empty());
    if (again) {
        require(TabSave(copy, options, value, kind).code == 0);
        require(TabLoad(copy, options, value, kind).code != 651);
        require(AdtCheck(value, kind).empty());
        std::remove(copy.c_str());
    }
    require(ErrorCell() == 0);
    AdtFree(value, kind);
}

void discover(const DataOptions& options) {
    const TabStructure found = TabDiscover(file, options, MaxTypeInfo);
    require(found.typeText.empty() == !found.message.empty());
    if (found.typeText.empty()) return;
    const auto lines = std::count(found.typeText.begin(), found.typeText.end(), '\n');
    require(lines - 2 == std::min(found.columnsSeen, MaxTabColumns));
    std::string list = found.typeText;
    TypeInfoChangeIndent(1, list, MaxTypeInfo);
    if (list.ends_with("end record\n")) load(KindList, "x : list\n" + list + "end list\n", options, false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || !write(std::string(reinterpret_cast<const char*>(data) + 1, size - 1))) return 0;
    const DataOptions options = optionsOf(data[0]);
    discover(options);
    load(KindList,
         "x : list\n\tr : record\n\t\ta : integer\n\t\tb : string[8]\n\t\tc : set[1:20]\n\t\td : real\n"
         "\t\te : Tchars[1:3]\n\t\tf : fixed\n\t\tg : boolean\n\t\th : enum\n\tend record\nend list\n",
         options, size % 16 == 0);
    load(KindString, "x : string[1000]\n", options, false);
    const DataFileInfo info = GetDataFileInfo(file, &options);
    require(info.typeText.empty() == !info.message.empty());
    require(LiveBlocks() == 0);
    std::remove(file.c_str());
    return 0;
}
