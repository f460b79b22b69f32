// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/generator.h"

#include "kernel/run/runtime.h"
#include "os/text/ascii.h"
#include "toolchain/language/library.h"
#include "toolchain/language/words.h"
#include "toolchain/output/functiongen.h"
#include "toolchain/output/interface.h"
#include "toolchain/output/literals.h"
#include "toolchain/output/names.h"

#include <set>

namespace tarn::toolchain {
namespace {

class ClassGenerator {
public:
    ClassGenerator(const ClassTree& tree, const GeneratorOptions& options) : tree_(tree), options_(options) {}

    Generated run() {
        for (const auto& item : tree_.declarations)
            if (item->kind == DeclarationKind::Function)
                bodies_ += generateFunction(*item, options_, shared_);
        for (const auto& item : tree_.declarations)
            if (isWindowFunction(*item)) shared_.foreign.insert(item.get());
        const std::string start = startFunction(), setup = setupFunction(), finish = finishFunction();
        Generated result;
        result.text = head() + variables() + prototypes() + shared_.literals.definition() +
                      shared_.shapes.definitions() + windows() + bodies_ + setup + start + finish +
                      programRecord();
        result.codeLines = std::move(shared_.codeLines);
        return result;
    }

private:
    std::string head() const {
        return "/* Made from a class of the language; changes are lost. */\n" + std::string(CoreText) +
               "#define H " + handler() + "\nstatic void " + OnerrorSymbol + "(int32_t code);\n";
    }

    const char* handler() const {
        return findDeclaration(tree_, "onerror") != nullptr ? OnerrorSymbol : "tarn_default_onerror";
    }

    static bool isVariable(const Declaration& item) {
        return item.kind == DeclarationKind::ClassVariable || isStoredConstant(item);
    }

    std::string variables() const {
        std::string result;
        for (const auto& item : tree_.declarations)
            if (isVariable(*item))
                result += std::string(item->isPublic ? "" : "static ") + cType(item->type->kind) + " " +
                          itemSymbol(*item) + ";\n";
        return result;
    }

    std::string prototypes() const {
        std::string result;
        for (const auto& item : tree_.declarations)
            if (item->kind == DeclarationKind::Function && !item->function->isOnerror)
                result += functionHead(*item) + ";\n";
        for (const Declaration* item : shared_.foreign) {
            if (item->owner == &tree_) continue;
            if (isVariable(*item))
                result += "extern " + cType(item->type->kind) + " " + itemSymbol(*item) + ";\n";
            else
                result +=
                    (item->function->external.empty() ? functionHead(*item) : externalHead(*item)) + ";\n";
        }
        return result;
    }

    // Calls the same step of each class that this one uses, once however often it is reached.
    std::string step(std::string_view what) const {
        std::string result;
        std::set<std::string> done{ascii::lowered(tree_.name)};
        for (const UsedClass& used : tree_.uses) {
            if (used.tree == nullptr || !done.insert(ascii::lowered(used.tree->name)).second) continue;
            result += "    { extern void " + classSymbol(used.tree->name, what) + "(void); " +
                      classSymbol(used.tree->name, what) + "(); }\n";
        }
        return result;
    }

    std::string stepHead(std::string_view what) const {
        return "void " + classSymbol(tree_.name, what) +
               "(void)\n{\n    static int done;\n    if (done)\n        return;\n    done = 1;\n";
    }

    // Literals and variables of all classes exist before the first initial value is computed, so that classes
    // that use each other find them.
    static bool isWindowFunction(const Declaration& item) {
        return item.function && item.function->isCallback;
    }

    std::string windows() const {
        std::string result;
        for (const auto& [item, name] : shared_.windows) result += "static tarn_record " + name + ";\n";
        return result;
    }

    // Windows and controls are known by name; the functions of windows get their events.
    std::string bindings() {
        std::string result;
        for (const auto& [item, name] : shared_.windows)
            result += "    " + shared_.shapes.initialise("&" + name, item->type) +
                      "\n    tarn_object_bind(&" + name + ", " + cString(item->window) + ", " +
                      cString(item->control) + ");\n";
        for (const auto& item : tree_.declarations)
            if (isWindowFunction(*item))
                result +=
                    "    tarn_window_register(" + cString(item->name) + ", w_" + itemSymbol(*item) + ");\n";
        return result;
    }

    std::string setupFunction() {
        std::string values = bindings();
        for (const auto& item : tree_.declarations)
            if (isVariable(*item) && !isScalar(item->type->kind))
                values += "    " + shared_.shapes.initialise("&" + itemSymbol(*item), item->type) + "\n";
        return stepHead("setup") + step("setup") + shared_.literals.initialisation() +
               shared_.shapes.initialisation() + values + "    tarn_register_class(" + cString(tree_.path) +
               ", " + cString(tree_.name) + ");\n}\n";
    }

    std::string startFunction() {
        return stepHead("start") + step("start") + generateInitialValues(tree_, options_, shared_) + "}\n";
    }

    std::string finishFunction() const {
        std::string result = stepHead("finish");
        for (auto item = tree_.declarations.rbegin(); item != tree_.declarations.rend(); ++item)
            if (isVariable(**item) && !isScalar((*item)->type->kind))
                result +=
                    "    tarn_adt_free(&" + itemSymbol(**item) + ", " + cKind((*item)->type->kind) + ");\n";
        for (const auto& [item, name] : shared_.windows)
            result += "    tarn_adt_free(&" + name + ", " + cKind(item->type->kind) + ");\n";
        return result + shared_.shapes.release() + shared_.literals.release() + step("finish") + "}\n";
    }

    std::string mainFunction() const {
        const Declaration& main = *findMain(tree_);
        return isWindowFunction(main) ? classSymbol(tree_.name, "window") : itemSymbol(main);
    }

    std::string programRecord() const {
        if (!hasMain(tree_)) return {};
        const Declaration& main = *findMain(tree_);
        const std::string window = !isWindowFunction(main) ? ""
                                                           : "static void " + mainFunction() +
                                                                 "(void)\n{\n    tarn_window_main(" +
                                                                 cString(main.name) + ");\n}\n";
        const std::string initialise = classSymbol(tree_.name, "initialise");
        return window + "static void " + initialise + "(void)\n{\n    " + classSymbol(tree_.name, "setup") +
               "();\n    " + classSymbol(tree_.name, "start") + "();\n}\nconst tarn_program " +
               classSymbol(tree_.name, "program") + " = {" + cString(std::string(ProductVersion)) + ", " +
               cString(tree_.path) + ", " + (options_.debug == 2 ? "2, 1" : "1, 0") + ", 1, " + initialise +
               ", " + mainFunction() + ", " + classSymbol(tree_.name, "finish") + ", " +
               cString(std::string(ProductWord)) + ", " + cString(std::string(ProductBuild)) + "};\n";
    }

    const ClassTree& tree_;
    const GeneratorOptions& options_;
    Shared shared_;
    std::string bodies_;
};

}  // namespace

bool hasMain(const ClassTree& tree) {
    return findMain(tree) != nullptr;
}

Generated generateC(const ClassTree& tree, const GeneratorOptions& options) {
    return ClassGenerator(tree, options).run();
}

}  // namespace tarn::toolchain
