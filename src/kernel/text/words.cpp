// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/words.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace tarn {
namespace {

// In alphabetical order, as the reserved ones are.
constexpr std::string_view FutureReservedWords[] = {"activate",
                                                    "all",
                                                    "also",
                                                    "alter",
                                                    "always",
                                                    "any",
                                                    "application",
                                                    "as",
                                                    "asm",
                                                    "avg",
                                                    "axioms",
                                                    "begin",
                                                    "between",
                                                    "bitmap",
                                                    "break",
                                                    "collection",
                                                    "complex",
                                                    "component",
                                                    "constructor",
                                                    "create",
                                                    "currency",
                                                    "datetime",
                                                    "deactivate",
                                                    "debug",
                                                    "decimal",
                                                    "declare",
                                                    "default",
                                                    "delete",
                                                    "destructor",
                                                    "dialog",
                                                    "dispinterface",
                                                    "distinct",
                                                    "do",
                                                    "done",
                                                    "double",
                                                    "drop",
                                                    "dynamic",
                                                    "event",
                                                    "events",
                                                    "except",
                                                    "execute",
                                                    "exported",
                                                    "exports",
                                                    "file",
                                                    "fileclose",
                                                    "fileopen",
                                                    "finalization",
                                                    "finally",
                                                    "form",
                                                    "generic",
                                                    "get",
                                                    "global",
                                                    "goto",
                                                    "grant",
                                                    "graph",
                                                    "group",
                                                    "having",
                                                    "image",
                                                    "implementation",
                                                    "inherit",
                                                    "inherited",
                                                    "inherits",
                                                    "init",
                                                    "initialization",
                                                    "inline",
                                                    "input",
                                                    "insert",
                                                    "interface",
                                                    "into",
                                                    "invariant",
                                                    "is",
                                                    "isnull",
                                                    "label",
                                                    "let",
                                                    "library",
                                                    "like",
                                                    "local",
                                                    "long",
                                                    "mainform",
                                                    "max",
                                                    "method",
                                                    "min",
                                                    "nil",
                                                    "null",
                                                    "object",
                                                    "objpas",
                                                    "on",
                                                    "optional",
                                                    "output",
                                                    "overload",
                                                    "override",
                                                    "packed",
                                                    "picture",
                                                    "procedure",
                                                    "program",
                                                    "property",
                                                    "put",
                                                    "raise",
                                                    "rational",
                                                    "repeat",
                                                    "resourcestring",
                                                    "revoke",
                                                    "secure",
                                                    "shl",
                                                    "shr",
                                                    "sort",
                                                    "sql",
                                                    "static",
                                                    "step",
                                                    "stream",
                                                    "structured",
                                                    "sum",
                                                    "sysinit",
                                                    "sysutils",
                                                    "this",
                                                    "thread",
                                                    "threadvar",
                                                    "timer",
                                                    "try",
                                                    "typename",
                                                    "uint",
                                                    "unit",
                                                    "until",
                                                    "update",
                                                    "values",
                                                    "varcond",
                                                    "variant",
                                                    "version",
                                                    "view",
                                                    "xml",
                                                    "xor"};

static_assert(std::is_sorted(std::begin(ReservedWords), std::end(ReservedWords)));
static_assert(std::is_sorted(std::begin(FutureReservedWords), std::end(FutureReservedWords)));

template <std::size_t N>
bool holds(const std::string_view (&table)[N], std::string_view word) {
    const std::string lower = ascii::lowered(word);
    return std::binary_search(std::begin(table), std::end(table), std::string_view(lower));
}

}  // namespace

bool IsReservedWord(std::string_view word) {
    return holds(ReservedWords, word);
}
bool IsFutureReservedWord(std::string_view word) {
    return holds(FutureReservedWords, word);
}
std::vector<std::string_view> FutureReservedWordList() {
    return {std::begin(FutureReservedWords), std::end(FutureReservedWords)};
}

}  // namespace tarn
