// SPDX-License-Identifier: Apache-2.0
//
// The frame of a function: its head, its locals, what it does on entering and leaving. statementgen.cpp holds
// its statements.
#include "toolchain/output/functiongen.h"

#include "os/text/ascii.h"
#include "toolchain/output/debuggen.h"
#include "toolchain/output/interface.h"
#include "toolchain/output/names.h"
#include "toolchain/output/statementgen.h"

namespace tarn::toolchain {
namespace {

// A parameter of mode in with a length is a variable of its own, so that its length holds.
bool isCopied(const Declaration& item) {
    return item.type->kind == Kind::String && item.mode == Mode::In && item.type->length != Unbounded;
}

std::string parameterText(const Declaration& item) {
    const Kind kind = item.type->kind;
    const std::string name = localSymbol(item);
    if (isScalar(kind)) return item.mode == Mode::In ? cType(kind) + " " + name : cPlace(kind) + " *" + name;
    if (item.mode != Mode::In) return cType(kind) + " *" + name;
    return "const " + cType(kind) + " *" + (isCopied(item) ? "a" + name.substr(1) : name);
}

std::string resultParameter(const Function& head) {
    return isComposite(head.result->kind) ? cType(head.result->kind) + " *result" : std::string();
}

std::string joined(const std::string& list, const std::string& item) {
    return list.empty() || item.empty() ? list + item : list + ", " + item;
}

std::string resultType(const Function& head) {
    return isComposite(head.result->kind) ? "void" : cType(head.result->kind);
}

// The run-time's functions take and give booleans and enums as whole words.
std::string wideType(Kind kind) {
    return cType(kind == Kind::Boolean || kind == Kind::Enum ? Kind::Integer : kind);
}

class FunctionGenerator {
public:
    FunctionGenerator(const Declaration& item, const GeneratorOptions& options, Shared& shared)
        : item_(item), head_(*item.function), options_(options), shared_(shared), out_(shared),
          statements_(head_, shared, out_) {}

    std::string run() {
        if (head_.isOnerror) return onerror();
        enter();
        if (options_.precond >= 1) conditions(head_.preconditions, "tarn_precondition");
        statements_.block(head_.body);
        out_.line("goto leave;");
        out_.line("leave:;");
        if (options_.precond >= 2) conditions(head_.postconditions, "tarn_postcondition");
        out_.line("tarn_stamp(0, 0, H);");
        const std::string body = out_.takeLines();
        leave();
        return finish(functionHead(item_), body, isScalar(head_.result->kind) ? "    return r;\n" : "") +
               callback();
    }

private:
    std::string finish(const std::string& head, const std::string& body, const std::string& last) {
        const std::string leaving = out_.takeLines();
        return head + "\n{\n" + entry_ + out_.temporaryDefinitions() + body + out_.temporaryRelease() +
               leaving + last + "}\n";
    }

    void enter() {
        locals();
        const Kind kind = head_.result->kind;
        if (kind == Kind::String)
            out_.line("tarn_string_assign_bytes(result, \"\", 0);");
        else if (isComposite(kind))
            out_.line("tarn_adt_clear(result, " + cKind(kind) + ");");
        else if (kind != Kind::None)
            out_.line(cType(kind) + " r = 0;");
        out_.line("quarn_enter(" + cString(item_.owner->name) + ", " + cString(ascii::lowered(item_.name)) +
                  ", " + cString(item_.name) + ", " + std::to_string(head_.bodyLine) + ");");
        if (options_.debug == 2) registerVariables(item_, out_);
        entry_ = out_.takeLines();
    }

    void locals() {
        for (const auto& item : head_.variables) local(*item);
        for (const auto& item : head_.parameters) {
            if (isCopied(*item)) {
                local(*item);
                out_.line("tarn_string_assign(&" + localSymbol(*item) + ", a" + localSymbol(*item).substr(1) +
                          ");");
            } else if (item->mode == Mode::Out) {
                clear(*item);
            }
        }
    }

    void local(const Declaration& item) {
        const Kind kind = item.type->kind;
        const std::string name = localSymbol(item);
        out_.line(cType(kind) + " " + name + (isScalar(kind) ? " = 0;" : ";"));
        if (!isScalar(kind)) out_.line(shared_.shapes.initialise("&" + name, item.type));
    }

    void clear(const Declaration& item) {
        const Kind kind = item.type->kind;
        const std::string name = localSymbol(item);
        if (isScalar(kind))
            out_.line("*" + name + " = 0;");
        else if (kind == Kind::String)
            out_.line("tarn_string_assign_bytes(" + name + ", \"\", 0);");
        else
            out_.line("tarn_adt_clear(" + name + ", " + cKind(kind) + ");");
    }

    void release(const Declaration& item) {
        const Kind kind = item.type->kind;
        if (kind == Kind::String)
            out_.line("tarn_string_free(&" + localSymbol(item) + ");");
        else if (!isScalar(kind))
            out_.line("tarn_adt_free(&" + localSymbol(item) + ", " + cKind(kind) + ");");
    }

    void leave() {
        for (auto item = head_.parameters.rbegin(); item != head_.parameters.rend(); ++item)
            if (isCopied(**item)) release(**item);
        for (auto item = head_.variables.rbegin(); item != head_.variables.rend(); ++item) release(**item);
        out_.line("quarn_leave();");
    }

    // What the windows call: the handled flag is the result.
    std::string callback() const {
        if (!head_.isCallback) return {};
        return "static int32_t w_" + itemSymbol(item_) +
               "(const tarn_record *me, int32_t event, const tarn_record *control, int32_t parameter)\n{\n"
               "    quarn_u8 handled = 0;\n    " +
               itemSymbol(item_) + "(event, control, parameter, &handled, me);\n    return handled;\n}\n";
    }

    // The handler has a frame of its own, so that errors in it are told with their place: its stamps call it once more,
    // and tarn_report_begin reports what it is then called with. Its lines are no places to stop at, because in the
    // debugger no handler is called.
    std::string onerror() {
        statements_.listNoLines();
        enter();
        statements_.block(head_.body);
        out_.line("goto leave;");
        out_.line("leave:;");
        out_.line("tarn_stamp(0, 0, H);");
        const std::string body = out_.takeLines();
        leave();
        const std::string code = localSymbol(*head_.parameters[0]);
        std::string guard;
        if (head_.hasRange)
            guard = "    if (" + code + " < " + std::to_string(head_.firstCode) + " || " + code + " > " +
                    std::to_string(head_.lastCode) + ") {\n        tarn_default_onerror(" + code +
                    ");\n        return;\n    }\n";
        entry_ = guard + "    if (!tarn_report_begin())\n        return;\n" + entry_;
        return finish(std::string("static void ") + OnerrorSymbol + "(int32_t " + code + ")", body,
                      "    tarn_report_end();\n");
    }

    void conditions(const std::vector<Condition>& list, const char* test) {
        for (const Condition& condition : list) {
            statements_.stamp(condition.line);
            statements_.open("{");
            out_.line(std::string(test) + "(" + out_.scalar(*condition.value) + ");");
            statements_.close();
        }
    }

    const Declaration& item_;
    const Function& head_;
    const GeneratorOptions& options_;
    Shared& shared_;
    ExpressionGenerator out_;
    StatementGenerator statements_;
    std::string entry_;
};

}  // namespace

bool DeclarationOrder::operator()(const Declaration* a, const Declaration* b) const {
    const auto nameOf = [](const Declaration& item) {
        if (item.kind == DeclarationKind::Window)
            return item.owner->name + "." + item.window + "." + item.name;
        return item.function && !item.function->external.empty() ? item.function->external : itemSymbol(item);
    };
    return a != b && nameOf(*a) < nameOf(*b);
}

void markCodeLine(Shared& shared, int line) {
    const auto number = static_cast<std::size_t>(line);
    if (shared.codeLines.size() <= number) shared.codeLines.resize(number + 1);
    shared.codeLines[number] = true;
}

std::string functionHead(const Declaration& item) {
    const Function& head = *item.function;
    std::string parameters;
    for (const auto& parameter : head.parameters) parameters = joined(parameters, parameterText(*parameter));
    parameters = joined(parameters, resultParameter(head));
    if (head.isCallback) parameters = joined(parameters, "const tarn_record *v_me");
    return std::string(item.isPublic ? "" : "static ") + resultType(head) + " " + itemSymbol(item) + "(" +
           (parameters.empty() ? "void" : parameters) + ")";
}

std::string externalHead(const Declaration& item) {
    const Function& head = *item.function;
    std::string parameters;
    for (const auto& parameter : head.parameters) {
        const Kind kind = parameter->type->kind;
        std::string text = parameter->mode == Mode::In ? wideType(kind)
                                                       : (isScalar(kind) ? cPlace(kind) : cType(kind)) + " *";
        if (parameter->mode == Mode::In && !isScalar(kind)) text = "const " + cType(kind) + " *";
        if (kind == Kind::Adt) text += ", int32_t";
        parameters = joined(parameters, text);
    }
    parameters = joined(parameters, resultParameter(head));
    const bool isPointer = head.external.starts_with("tarn_win_") || head.external.starts_with("tarn_lib_");
    const std::string name = isPointer ? "(*const " + head.external + ")" : head.external;
    return (isPointer ? "extern " : "") +
           (isComposite(head.result->kind) ? "void" : wideType(head.result->kind)) + " " + name + "(" +
           (parameters.empty() ? "void" : parameters) + ")";
}

std::string generateFunction(const Declaration& item, const GeneratorOptions& options, Shared& shared) {
    return FunctionGenerator(item, options, shared).run();
}

namespace {

void initialValue(const Declaration& item, Shared& shared, ExpressionGenerator& out) {
    out.freeTemporaries();
    out.line("tarn_stamp(" + std::to_string(item.line) + ", 0, H);");
    markCodeLine(shared, item.line);
    out.line("{");
    out.indent(1);
    if (isScalar(item.type->kind)) {
        const std::string value = out.scalar(*item.initial);
        out.line(out.place(item) + " = (" + cType(item.type->kind) + ")" + value + ";");
    } else {
        const std::string value = out.address(*item.initial);
        out.copy(value, out.place(item), item.type);
    }
    out.indent(-1);
    out.line("}");
}

}  // namespace

std::string generateInitialValues(const ClassTree& tree, const GeneratorOptions& options, Shared& shared) {
    ExpressionGenerator out(shared);
    if (options.debug == 2) registerClassVariables(tree, out);
    const std::string registered = out.takeLines();
    for (const auto& item : tree.declarations)
        if (isStoredConstant(*item)) initialValue(*item, shared, out);
    for (const auto& item : tree.declarations)
        if (item->kind == DeclarationKind::ClassVariable && item->initial) initialValue(*item, shared, out);
    const std::string body = out.takeLines();
    if (body.empty()) return {};
    return "    tarn_enter(" + cString(tree.name) + ", \"initialise\", " + std::to_string(tree.line) +
           ");\n" + registered + out.temporaryDefinitions() + body + "    tarn_stamp(0, 0, H);\n" +
           out.temporaryRelease() + "    tarn_leave();\n";
}

}  // namespace tarn::toolchain
