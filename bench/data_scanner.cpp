// SPDX-License-Identifier: Apache-2.0
// The scanner on text that looks like source, beside a lexer of flex with the same symbols.
#include "data_bench.h"

#include "kernel/data/scanner/scanner.h"

#ifdef BENCH_FLEX
#include "scanner_peer.h"
#endif

#include <memory>
#include <random>

namespace bench {

using namespace tarn;

namespace {

constexpr struct {
    std::int32_t id;
    const char *key, *terminator = "";
} symbols[] = {
    {0, "##WHITESPACE"}, {0, "##EOL"},       {0, "//", "##EOL"}, {0, "/*", "*/"}, {1, "if"},
    {2, "else"},         {3, "while"},       {4, "for"},         {5, "return"},   {6, "function"},
    {7, "end"},          {8, "record"},      {9, "table"},       {10, "list"},    {11, "integer"},
    {12, "string"},      {20, "("},          {21, ")"},          {22, "["},       {23, "]"},
    {24, ","},           {25, ";"},          {26, ":"},          {27, ":="},      {28, "="},
    {29, "<>"},          {30, "<"},          {31, "<="},         {32, ">"},       {33, ">="},
    {34, "+"},           {35, "-"},          {36, "*"},          {37, "/"},       {38, "."},
    {50, "##ID"},        {51, "##SQSTR"},    {52, "##DQSTR"},    {53, "##UINT"},  {54, "##UFIXED"},
    {55, "##UREAL"},     {56, "##HEXCONST"},
};

// Statements as people write them, 4 MB of them.
std::string sourceText() {
    constexpr const char* lines[] = {
        "function addOrder(orders : table, name : string, amount : fixed)\n",
        "    // The customer may be known already.\n",
        "    if customerNumber <> 0 then\n",
        "        total := total + amount * 1.25 - discount[row, 3];\n",
        "    else\n",
        "        report('there is no customer of this name', name, line);\n",
        "        /* what follows counts\n           for both of them */\n",
        "    end;\n",
        "    while position <= length(text) do position := position + 1;\n",
        "    mask := 0x7FFF; limit := 1.5E-3; caption := \"Orders, \"\"all\"\"\";\n",
        "    for i := 1 to 100 do list.append(values[i], key.name);\n",
        "    return string(result) + ': ' + text.part(first, last - 1);\n",
        "end\n",
        "\n",
    };
    std::minstd_rand random(1);
    std::string text;
    while (text.size() < 4000000) text += lines[random() % std::size(lines)];
    return text;
}
std::string sourceFile() {
    return fileOf("source.txt", sourceText);
}

std::int64_t scanAll(const std::string& path, const SymbolTable& table) {
    std::int64_t sum = 0;
    for (ScannerOpen(path, &table, false); ScannerSymbol() != SymbolEndOfFile; ScannerNext(&table))
        sum += ScannerSymbol();
    ScannerClose();
    return sum;
}
std::unique_ptr<SymbolTable> makeTable() {
    auto table = std::make_unique<SymbolTable>();
    for (const auto& symbol : symbols) SymbolAdd(table.get(), symbol.id, symbol.key, symbol.terminator);
    return table;
}

void scanKernel(benchmark::State& state) {
    const std::string path = sourceFile();
    const auto table = makeTable();
    repeat(state, [&] { return scanAll(path, *table) > 0; });
    setBytes(state, sizeOf(path));
}
BENCHMARK(scanKernel);

#ifdef BENCH_FLEX
std::int64_t lexAll(const std::string& path) {
    std::int64_t sum = 0;
    std::FILE* const in = std::fopen(path.c_str(), "rb");
    peerOpen(in);
    for (int token = peerToken(); token != 0; token = peerToken()) sum += token;
    std::fclose(in);
    return sum;
}
void scanFlex(benchmark::State& state) {
    const std::string path = sourceFile();
    const std::int64_t expected = scanAll(path, *makeTable());
    repeat(state, [&] { return lexAll(path) == expected; });
    setBytes(state, sizeOf(path));
}
BENCHMARK(scanFlex);
#endif

}  // namespace

}  // namespace bench
