// SPDX-License-Identifier: Apache-2.0
//
// Resource text and compiled resources of any bytes. What was read and is written unchanged changes no byte;
// written afresh it is read as it was; what is done to one resource leaves all others as they were; and a text
// hides nothing of what stands before and behind it.
#include "platform/resources/rcedit.h"
#include "platform/resources/rcx.h"
#include "platform/text.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace tarn::platform;

const std::string file = "a.rc";

void expect(bool holds) {
    if (!holds) std::abort();
}

// The resources that can be asked for by name, one a line.
std::string names(const RcFile& parsed) {
    return listStatements(parsed, file, "*", "*").text;
}

void compile(const RcFile& parsed, const std::string& name) {
    WindowTemplate made, decoded;
    if (!makeTemplate(parsed, name, made).empty()) return;
    CompiledResources compiled;
    expect(compiled.open(encodeResources({{"DIALOG", name, "", encodeWindow(made)}}, {})).empty());
    expect(compiled.window(name, decoded));
    expect(encodeWindow(decoded) == encodeWindow(made));
}

void rewrite(const RcFile& parsed, const std::string& name) {
    ObjectArray objects, again;
    if (!readObjects(parsed, file, name, objects).empty()) return;
    RcFile same = parsed, fresh;
    expect(writeObjects(same, file, objects, {}).empty() && same.text == parsed.text);
    expect(writeObjects(fresh, file, objects, {}).empty());
    expect(readObjects(fresh, file, name, again).empty() && again == objects);
    expect(names(fresh) == objects[0].substr(5, objects[0].find('\n') - 4));
}

// Takes an object out and puts one in.
void change(const RcFile& parsed, const std::string& name) {
    ObjectArray objects, again;
    if (!readObjects(parsed, file, name, objects).empty()) return;
    if (objects[1].empty()) return;
    for (std::size_t i = 1; i + 1 < objects.size(); ++i) objects[i] = objects[i + 1];
    objects.back() = makePropertyList("added", Type::Label, {});
    for (std::size_t i = objects.size() - 1; i > 1 && objects[i - 1].empty(); --i)
        std::swap(objects[i - 1], objects[i]);
    RcFile changed = parsed;
    expect(writeObjects(changed, file, objects, {}).empty());
    expect(readObjects(changed, file, name, again).empty() && again == objects);
    expect(names(changed) == names(parsed));
}

void edit(const RcFile& parsed, const std::string& name) {
    RcFile renamed = parsed, removed = parsed;
    if (!renameStatement(renamed, file, name, "renamed_by_no_seed").empty()) return;
    expect(renamed.find("renamed_by_no_seed") != nullptr && renamed.find(name) == nullptr);
    if (!deleteStatement(removed, file, name).empty()) return;
    expect(removed.find(name) == nullptr && listStatements(removed, file, "*", name).text.empty());
    // A byte order mark that comes to the start of the text hides nothing there any more.
    if (removed.text.starts_with("\xef\xbb\xbf") != parsed.text.starts_with("\xef\xbb\xbf")) return;
    std::string left;
    for (const RcStatement& statement : parsed.statements)
        if (statement.kind != RcKind::Unknown && statement.kind != RcKind::Define &&
            !sameText(statement.name, name))
            left += statement.name + "\n";
    expect(names(removed) == left);
}

// The text between statements of its own.
void surround(const std::string& text) {
    const std::string before = "before_all DIALOG\nLabel x 1\nEND\n",
                      behind = "\nbehind_all DIALOG\nLabel y 2\nEND\nlast_of_all BITMAP \"x\"\n";
    RcFile parsed = parseResourceText(before + text + behind);
    if (!parsed.fault.empty()) return;
    const std::string list = names(parsed);
    expect(list.starts_with("before_all\n") && list.ends_with("behind_all\nlast_of_all\n"));
    if (parsed.find("behind_all")->kind != RcKind::Window || !parsed.find("behind_all")->fault.empty())
        return;
    ObjectArray objects;
    expect(readObjects(parsed, file, "before_all", objects).empty());
    objects[0] += "CAPTION=\"new\"\n";
    expect(writeObjects(parsed, file, objects, {}).empty());
    expect(parsed.text.ends_with(text + behind) && names(parsed) == list);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CompiledResources damaged;
    static_cast<void>(damaged.open(text));
    const RcFile parsed = parseResourceText(text);
    surround(text);
    int windows = 0;
    for (const RcStatement& statement : parsed.statements) {
        if (statement.kind == RcKind::Unknown || statement.kind == RcKind::Define || ++windows > 3) continue;
        static_cast<void>(listStatements(parsed, file, "*", statement.name));
        edit(parsed, statement.name);
        if (statement.kind != RcKind::Window) continue;
        compile(parsed, statement.name);
        rewrite(parsed, statement.name);
        change(parsed, statement.name);
    }
    return 0;
}
