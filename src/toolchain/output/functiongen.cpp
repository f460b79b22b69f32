// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/functiongen.h"

#include "os/text/ascii.h"
#include "toolchain/language/words.h"
#include "toolchain/output/exprgen.h"
#include "toolchain/output/interface.h"
#include "toolchain/output/names.h"

namespace tarn::toolchain {
namespace {

std::string parameterText(const Declaration& item) {
    const std::string name = "v_" + ascii::lowered(item.name);
    if (item.type.type != Type::String)
        return cType(item.type.type) + std::string(item.mode == Mode::In ? " " : " *") + name;
    if (item.mode != Mode::In) return "tarn_string *" + name;
    return std::string("const tarn_string *") + (item.type.maxLength == Unbounded ? "v_" : "a_") +
           ascii::lowered(item.name);
}

bool isString(const Declaration& item) {
    return item.type.type == Type::String;
}

// A parameter of mode in with a length is a variable of its own, so that its length holds.
bool isCopied(const Declaration& item) {
    return isString(item) && item.mode == Mode::In && item.type.maxLength != Unbounded;
}

void markCodeLine(Shared& shared, int line) {
    const auto number = static_cast<std::size_t>(line);
    if (shared.codeLines.size() <= number) shared.codeLines.resize(number + 1);
    shared.codeLines[number] = true;
}

std::string temporaryStrings(int number) {
    if (number == 0) return {};
    const std::string count = std::to_string(number);
    return "    tarn_string t[" + count + "];\n    for (int i = 0; i < " + count +
           "; ++i)\n        tarn_string_init(&t[i], TARN_UNBOUNDED);\n";
}

std::string freeTemporaryStrings(int number) {
    if (number == 0) return {};
    return "    for (int i = " + std::to_string(number) + "; i-- > 0;)\n        tarn_string_free(&t[i]);\n";
}

class FunctionGenerator {
public:
    FunctionGenerator(const Declaration& item, const GeneratorOptions& options, Shared& shared)
        : item_(item), head_(*item.function), options_(options), shared_(shared), out_(shared) {}

    std::string run() {
        if (head_.isOnerror) return onerror();
        enter();
        if (options_.precond >= 1) conditions(head_.preconditions, "tarn_precondition");
        block(head_.body);
        out_.line("goto leave;");
        out_.line("leave:;");
        if (options_.precond >= 2) conditions(head_.postconditions, "tarn_postcondition");
        out_.line("tarn_stamp(0, 0, H);");
        const std::string body = out_.takeLines();
        leave();
        return finish(functionHead(item_), body,
                      head_.result.type == Type::None || stringResult() ? "" : "    return r;\n");
    }

private:
    bool stringResult() const { return head_.result.type == Type::String; }

    // ---- the frame of a function ----

    std::string finish(const std::string& head, const std::string& body, const std::string& last) {
        const std::string leaving = out_.takeLines();
        return head + "\n{\n" + entry_ + temporaryStrings(out_.temporaries()) + body +
               freeTemporaryStrings(out_.temporaries()) + leaving + last + "}\n";
    }

    void enter() {
        locals();
        if (stringResult())
            out_.line("tarn_string_assign_bytes(result, \"\", 0);");
        else if (head_.result.type != Type::None)
            out_.line(std::string(cType(head_.result.type)) + " r = 0;");
        out_.line("quarn_enter(" + cString(item_.owner->name) + ", " + cString(item_.name) + ", " +
                  std::to_string(head_.bodyLine) + ");");
        if (options_.debug == 2) registerVariables();
        entry_ = out_.takeLines();
    }

    void locals() {
        for (const auto& item : head_.variables) {
            const std::string name = "v_" + ascii::lowered(item->name);
            out_.line(std::string(cType(item->type.type)) + " " + name + (isString(*item) ? ";" : " = 0;"));
            if (isString(*item)) initialise(name, item->type.maxLength);
        }
        for (const auto& item : head_.parameters) {
            const std::string name = "v_" + ascii::lowered(item->name);
            if (isCopied(*item)) {
                out_.line("tarn_string " + name + ";");
                initialise(name, item->type.maxLength);
                out_.line("tarn_string_assign(&" + name + ", a_" + ascii::lowered(item->name) + ");");
            } else if (item->mode == Mode::Out) {
                out_.line(isString(*item) ? "tarn_string_assign_bytes(" + name + ", \"\", 0);"
                                          : "*" + name + " = 0;");
            }
        }
    }
    void initialise(const std::string& name, std::int32_t maxLength) {
        out_.line("tarn_string_init(&" + name + ", " + std::to_string(maxLength) + ");");
    }

    void registerVariables() {
        static constexpr char Roles[] = {'I', 'O', 'N'};
        for (const auto& item : head_.parameters)
            registerVariable(*item, Roles[static_cast<int>(item->mode)]);
        for (const auto& item : head_.variables) registerVariable(*item, 'V');
        for (const auto& item : item_.owner->declarations)
            if (item->kind == DeclarationKind::ClassVariable) registerVariable(*item, 'C');
    }
    void registerVariable(const Declaration& item, char role) {
        static constexpr const char* Kinds[] = {"0", "0", "TARN_BOOLEAN", "TARN_INTEGER", "TARN_STRING"};
        const std::string place = isString(item) ? out_.place(item) : "&" + out_.place(item);
        out_.line("tarn_register_variable(" + cString(item.name) + ", '" + role + "', " +
                  Kinds[static_cast<int>(item.type.type)] + ", (void *)" + place + ");");
    }

    void leave() {
        for (auto item = head_.parameters.rbegin(); item != head_.parameters.rend(); ++item)
            if (isCopied(**item)) out_.line("tarn_string_free(&v_" + ascii::lowered((*item)->name) + ");");
        for (auto item = head_.variables.rbegin(); item != head_.variables.rend(); ++item)
            if (isString(**item)) out_.line("tarn_string_free(&v_" + ascii::lowered((*item)->name) + ");");
        if (!head_.isOnerror) out_.line("tarn_leave();");
    }

    // The handler works in the frame where the error arose: it has none of its own, and does not move its
    // line.
    std::string onerror() {
        stamps_ = false;
        locals();
        entry_ = out_.takeLines();
        block(head_.body);
        out_.line("goto leave;");
        out_.line("leave:;");
        const std::string body = out_.takeLines();
        leave();
        const std::string code = "v_" + ascii::lowered(head_.parameters[0]->name);
        std::string guard = "    const int32_t line = tarn_current_line;\n";
        if (head_.hasRange)
            guard += "    if (" + code + " < " + std::to_string(head_.firstCode) + " || " + code + " > " +
                     std::to_string(head_.lastCode) + ") {\n        tarn_default_onerror(" + code +
                     ");\n        return;\n    }\n";
        entry_ = guard + "    if (!tarn_report_begin())\n        return;\n" + entry_;
        return finish(std::string("static void ") + OnerrorSymbol + "(int32_t " + code + ")", body,
                      "    tarn_current_line = line;\n    tarn_report_end();\n");
    }

    // ---- statements ----

    void stamp(int line) {
        out_.freeTemporaries();
        if (!stamps_) return;
        out_.line("tarn_stamp(" + std::to_string(line) + ", 0, H);");
        markCodeLine(shared_, line);
    }
    std::string stampText(int line) const {
        return stamps_ ? ", tarn_stamp(" + std::to_string(line) + ", 0, H)" : "";
    }

    void conditions(const std::vector<Condition>& list, const char* test) {
        for (const Condition& condition : list) {
            stamp(condition.line);
            open("{");
            out_.line(std::string(test) + "(" + out_.number(*condition.value) + ");");
            close();
        }
    }

    void open(const std::string& text) {
        out_.line(text);
        out_.indent(1);
    }
    void close(const std::string& text = "}") {
        out_.indent(-1);
        out_.line(text);
    }

    void block(const Block& statements) {
        for (const StatementPtr& item : statements) {
            open("{");
            statement(*item);
            close();
        }
    }

    void statement(const Statement& item) {
        switch (item.kind) {
        case StatementKind::Assign: stamp(item.line); return assignment(item);
        case StatementKind::Call: stamp(item.line); return out_.call(*item.value);
        case StatementKind::If: return ifStatement(item);
        case StatementKind::While:
        case StatementKind::Loop: return loop(item);
        case StatementKind::For: return forLoop(item);
        case StatementKind::Exit: return leaveLoop(item, "break;");
        case StatementKind::Iterate: return leaveLoop(item, "continue;");
        case StatementKind::Select: return select(item);
        case StatementKind::Return: return returned(item);
        }
    }

    void assignment(const Statement& item) {
        const Expression& target = *item.target;
        if (target.kind == ExpressionKind::Element) {
            const std::string index = out_.numberBefore(*target.operands[0], *item.value);
            const std::string value = out_.number(*item.value);
            out_.line("tarn_string_put(" + out_.place(*target.target) + ", " + index + ", " + value + ");");
        } else if (target.type == Type::String && item.value->kind == ExpressionKind::Call &&
                   !item.value->constant) {
            // The call's result may not be a variable that the call can see.
            const std::string value = out_.text(*item.value);
            out_.line("tarn_string_assign(" + out_.place(*target.target) + ", " + value + ");");
        } else if (target.type == Type::String) {
            out_.textInto(*item.value, out_.place(*target.target));
        } else {
            const std::string value = out_.number(*item.value);
            out_.line(out_.place(*target.target) + " = " + cast(target.type) + value + ";");
        }
    }
    static std::string cast(Type type) { return type == Type::Boolean ? "(uint8_t)" : ""; }

    void ifStatement(const Statement& item) {
        const std::string end = newLabel();
        for (const Branch& branch : item.branches) {
            const std::string next = newLabel();
            open("{");
            if (branch.condition) {
                stamp(branch.line);
                out_.line("if (!" + out_.number(*branch.condition) + ")");
                out_.line("    goto " + next + ";");
            }
            block(branch.body);
            out_.line("goto " + end + ";");
            close();
            if (branch.condition) out_.line(next + ":;");
        }
        out_.line(end + ":;");
    }

    void loop(const Statement& item) {
        open("for (;;) {");
        stamp(item.line);
        if (item.value) {
            out_.line("if (!" + out_.number(*item.value) + ")");
            out_.line("    break;");
        }
        block(item.body);
        close();
    }

    // A counter of its own, wide enough never to overflow, so that the body can change the variable freely.
    void forLoop(const Statement& item) {
        stamp(item.line);
        const std::string counter = out_.newName(), limit = out_.newName(), step = out_.newName();
        out_.line("int64_t " + counter + " = " + out_.number(*item.value) + ";");
        out_.line("const int64_t " + limit + " = " + out_.number(*item.limit) + ";");
        out_.line("const int64_t " + step + " = " + (item.step ? out_.number(*item.step) : "1") + ";");
        open("for (; " + step + " > 0 && " + counter + (item.down ? " >= " : " <= ") + limit + "; " +
             counter + (item.down ? " -= " : " += ") + step + stampText(item.line) + ") {");
        out_.line(out_.place(*item.target->target) + " = (int32_t)" + counter + ";");
        block(item.body);
        close();
    }

    void leaveLoop(const Statement& item, const char* jump) {
        stamp(item.line);
        if (item.value) out_.line("if (" + out_.number(*item.value) + ")");
        out_.line(std::string(item.value ? "    " : "") + jump);
    }

    void select(const Statement& item) {
        stamp(item.line);
        const bool text = item.value->type == Type::String;
        const std::string value = text ? out_.text(*item.value) : out_.newName();
        if (!text) out_.line("const int32_t " + value + " = " + out_.number(*item.value) + ";");
        const std::string end = newLabel();
        for (const Branch& branch : item.branches) {
            const std::string body = newLabel(), next = newLabel();
            for (const CaseLabel& label : branch.labels)
                out_.line("if (" + caseTest(label, value, text) + ") goto " + body + ";");
            if (!branch.labels.empty()) out_.line("goto " + next + ";");
            open(body + ": {");
            block(branch.body);
            out_.line("goto " + end + ";");
            close();
            out_.line(next + ":;");
        }
        out_.line(end + ":;");
    }

    std::string caseTest(const CaseLabel& label, const std::string& value, bool text) {
        if (text) return "tarn_string_compare(" + value + ", " + out_.text(*label.from) + ") == 0";
        if (!label.to) return value + " == " + out_.number(*label.from);
        return value + " >= " + out_.number(*label.from) + " && " + value + " <= " + out_.number(*label.to);
    }

    void returned(const Statement& item) {
        stamp(item.line);
        if (item.value && stringResult())
            out_.textInto(*item.value, "result");
        else if (item.value)
            out_.line("r = " + cast(head_.result.type) + out_.number(*item.value) + ";");
        out_.line("goto leave;");
    }

    std::string newLabel() { return "L" + std::to_string(++labels_); }

    const Declaration& item_;
    const Function& head_;
    const GeneratorOptions& options_;
    Shared& shared_;
    ExpressionGenerator out_;
    std::string entry_;
    int labels_ = 0;
    bool stamps_ = true;
};

}  // namespace

const char* cType(Type type) {
    switch (type) {
    case Type::Boolean: return "uint8_t";
    case Type::Integer: return "int32_t";
    case Type::String: return "tarn_string";
    default: return "void";
    }
}

std::string functionHead(const Declaration& item) {
    const Function& head = *item.function;
    std::string parameters;
    for (const auto& parameter : head.parameters)
        parameters += (parameters.empty() ? "" : ", ") + parameterText(*parameter);
    const bool text = head.result.type == Type::String;
    if (text) parameters += std::string(parameters.empty() ? "" : ", ") + "tarn_string *result";
    return std::string(item.isPublic ? "" : "static ") + (text ? "void" : cType(head.result.type)) + " " +
           itemSymbol(item) + "(" + (parameters.empty() ? "void" : parameters) + ")";
}

std::string generateFunction(const Declaration& item, const GeneratorOptions& options, Shared& shared) {
    return FunctionGenerator(item, options, shared).run();
}

std::string generateInitialValues(const ClassTree& tree, Shared& shared) {
    ExpressionGenerator out(shared);
    for (const auto& item : tree.declarations) {
        if (item->kind != DeclarationKind::ClassVariable || !item->initial) continue;
        out.freeTemporaries();
        out.line("tarn_stamp(" + std::to_string(item->line) + ", 0, H);");
        markCodeLine(shared, item->line);
        if (isString(*item)) {
            const std::string value = out.text(*item->initial);
            out.line("tarn_string_assign(" + out.place(*item) + ", " + value + ");");
        } else {
            const std::string value = out.number(*item->initial);
            out.line(out.place(*item) + " = (" + cType(item->type.type) + ")" + value + ";");
        }
    }
    const std::string body = out.takeLines();
    if (body.empty()) return {};
    return "    tarn_enter(" + cString(tree.name) + ", \"initialise\", " + std::to_string(tree.line) +
           ");\n" + temporaryStrings(out.temporaries()) + body + "    tarn_stamp(0, 0, H);\n" +
           freeTemporaryStrings(out.temporaries()) + "    tarn_leave();\n";
}

}  // namespace tarn::toolchain
