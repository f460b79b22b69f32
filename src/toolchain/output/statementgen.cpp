// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/statementgen.h"

#include "toolchain/output/names.h"

namespace tarn::toolchain {

void StatementGenerator::stamp(int line) {
    out_.freeTemporaries();
    out_.line("tarn_stamp(" + std::to_string(line) + ", 0, H);");
    if (listed_) markCodeLine(shared_, line);
}

std::string StatementGenerator::stampText(int line) {
    return ", tarn_stamp(" + std::to_string(line) + ", 0, H)";
}

void StatementGenerator::open(const std::string& text) {
    out_.line(text);
    out_.indent(1);
}

void StatementGenerator::close(const std::string& text) {
    out_.indent(-1);
    out_.line(text);
}

void StatementGenerator::block(const Block& statements) {
    for (const StatementPtr& item : statements) {
        open("{");
        statement(*item);
        close();
    }
}

void StatementGenerator::statement(const Statement& item) {
    switch (item.kind) {
    case StatementKind::Assign: stamp(item.line); return out_.assign(*item.target, *item.value);
    case StatementKind::Call: stamp(item.line); return out_.call(*item.value);
    case StatementKind::If: return ifStatement(item);
    case StatementKind::While:
    case StatementKind::Loop: return loop(item);
    case StatementKind::For: return forLoop(item);
    case StatementKind::ForEach: return forEach(item);
    case StatementKind::Exit: return leaveLoop(item, "break;");
    case StatementKind::Iterate: return leaveLoop(item, "continue;");
    case StatementKind::Select: return select(item);
    case StatementKind::Return: return returned(item);
    }
}

void StatementGenerator::ifStatement(const Statement& item) {
    const std::string end = newLabel();
    for (const Branch& branch : item.branches) {
        const std::string next = newLabel();
        open("{");
        if (branch.condition) {
            stamp(branch.line);
            out_.line("if (!" + out_.scalar(*branch.condition) + ")");
            out_.line("    goto " + next + ";");
        }
        block(branch.body);
        out_.line("goto " + end + ";");
        close();
        if (branch.condition) out_.line(next + ":;");
    }
    out_.line(end + ":;");
}

void StatementGenerator::loop(const Statement& item) {
    open("for (;;) {");
    stamp(item.line);
    if (item.value) {
        out_.line("if (!" + out_.scalar(*item.value) + ")");
        out_.line("    break;");
    }
    block(item.body);
    close();
}

// A counter of its own, wide enough never to overflow, so that the body can change the variable freely.
void StatementGenerator::forLoop(const Statement& item) {
    stamp(item.line);
    const std::string counter = out_.newName(), limit = out_.newName(), step = out_.newName();
    out_.line("int64_t " + counter + " = " + out_.scalar(*item.value) + ";");
    out_.line("const int64_t " + limit + " = " + out_.scalar(*item.limit) + ";");
    out_.line("const int64_t " + step + " = " + (item.step ? out_.scalar(*item.step) : "1") + ";");
    open("for (; " + step + " > 0 && " + counter + (item.down ? " >= " : " <= ") + limit + "; " + counter +
         (item.down ? " -= " : " += ") + step + stampText(item.line) + ") {");
    out_.line(out_.place(*item.target->target) + " = (int32_t)" + counter + ";");
    block(item.body);
    close();
}

// ---- for each ----

// What is walked keeps its place or is a temporary of the whole loop. The walk ends where the number of
// elements changes.
void StatementGenerator::forEach(const Statement& item) {
    stamp(item.line);
    const std::string walked = out_.walkedAddress(*item.value);
    const ExpressionGenerator::Reservation reserved(out_);
    switch (item.value->type->kind) {
    case Kind::Set: return walkSet(item, walked);
    case Kind::String: return walkLines(item, walked);
    case Kind::Table: return item.index > 0 ? walkIndex(item, walked) : walkTable(item, walked);
    default: return walkElements(item, walked);
    }
}

void StatementGenerator::take(const Statement& item, const std::string& source, const Type* element) {
    if (isScalar(element->kind))
        takeScalar(item, "(*(" + cPlace(element->kind) + " *)" + source + ")", element->kind);
    else
        out_.copy("(" + cPlace(element->kind) + " *)" + source, out_.place(*item.target->target),
                  item.target->type);
}

void StatementGenerator::takeScalar(const Statement& item, const std::string& value, Kind kind) {
    const Kind to = item.target->type->kind;
    std::string text = value;
    if (kind == Kind::Integer && to == Kind::Fixed) text = "tarn_fixed_from_integer(" + value + ")";
    if (kind == Kind::Fixed && to == Kind::Real) text = "tarn_fixed_to_real(" + value + ")";
    out_.line(out_.place(*item.target->target) + " = (" + cType(to) + ")" + text + ";");
}

// What each round does behind taking the element.
void StatementGenerator::round(const Statement& item) {
    if (item.where) {
        out_.line("if (!" + out_.scalar(*item.where) + ")");
        out_.line("    continue;");
    }
    block(item.body);
    close();
}

void StatementGenerator::walkElements(const Statement& item, const std::string& walked) {
    const Type& type = *item.value->type;
    const bool isList = type.kind == Kind::List;
    const std::string counter = out_.newName(), count = out_.newName(),
                      size = std::to_string(sizeOf(type.element->kind));
    // Elements of an array stand one behind another, whatever its dimensions.
    const std::string number =
        isList ? "tarn_list_count(" + walked + ")" : "((" + walked + ")->size / " + size + ")";
    out_.line("const int32_t " + count + " = " + number + ";");
    open("for (int32_t " + counter + " = " + (item.down ? count : "1") + "; " + counter + " >= 1 && " +
         counter + " <= " + count + " && " + number + " == " + count + "; " + (item.down ? "--" : "++") +
         counter + stampText(item.line) + ") {");
    out_.freeTemporaries();
    if (type.isExternal) {
        std::string value;
        if (isScalar(type.element->kind)) {
            value = out_.newName();
            out_.line(cType(type.element->kind) + " " + value + " = 0;");
            value = "&" + value;
        } else {
            value = out_.temporary(type.element);
        }
        out_.line("tarn_list_get(" + walked + ", " + counter + ", " + value + ", " +
                  cKind(type.element->kind) + ");");
        take(item, value, type.element);
    } else {
        take(item,
             "(tarn_heap_base + (" + walked + ")->data + (int64_t)(" + counter + " - 1) * " + size + ")",
             type.element);
    }
    round(item);
}

void StatementGenerator::walkSet(const Statement& item, const std::string& walked) {
    const std::string member = out_.newName(), last = out_.newName(), first = out_.newName();
    out_.line("const int32_t " + first + " = (" + walked + ")->lower, " + last + " = (" + walked +
              ")->upper;");
    open("for (int32_t " + member + " = " + (item.down ? last : first) + "; " + member + " >= " + first +
         " && " + member + " <= " + last + "; " + (item.down ? "--" : "++") + member + stampText(item.line) +
         ") {");
    out_.freeTemporaries();
    out_.line("if (!tarn_set_contains(" + member + ", " + walked + "))");
    out_.line("    continue;");
    takeScalar(item, member, Kind::Integer);
    round(item);
}

void StatementGenerator::walkLines(const Statement& item, const std::string& walked) {
    const std::string position = out_.newName(), length = out_.newName();
    out_.line("const int32_t " + length + " = (" + walked + ")->length;");
    out_.line("int32_t " + position + " = " + (item.down ? length + " + 1" : "1") + ";");
    open("while ((" + walked + ")->length == " + length + " && tarn_text_" +
         (item.down ? "previous" : "next") + "_line(" + walked + ", &" + position + ", " +
         out_.place(*item.target->target) + ")) {");
    stamp(item.line);
    round(item);
}

// Without an index: in the order in which the rows stand.
void StatementGenerator::walkTable(const Statement& item, const std::string& walked) {
    const std::string counter = out_.newName(), count = out_.newName();
    out_.line("const int32_t " + count + " = tarn_table_count(" + walked + ");");
    open("for (int32_t " + counter + " = " + (item.down ? count : "1") + "; " + counter + " >= 1 && " +
         counter + " <= " + count + " && tarn_table_count(" + walked + ") == " + count + "; " +
         (item.down ? "--" : "++") + counter + stampText(item.line) + ") {");
    out_.freeTemporaries();
    out_.line("tarn_table_row(" + walked + ", " + counter + ", " + out_.place(*item.target->target) + ");");
    round(item);
}

// The key of the row before leads to the next one, so the body may change the row as it likes.
void StatementGenerator::walkIndex(const Statement& item, const std::string& walked) {
    const std::string count = out_.newName(), op = out_.newName(), done = out_.newName(),
                      index = std::to_string(item.index);
    const std::string row = out_.place(*item.target->target);
    const std::string key = out_.rawTemporary(Kind::Record);
    const ExpressionGenerator::Reservation reserved(out_);
    out_.line("const int32_t " + count + " = tarn_table_count(" + walked + ");");
    out_.line("int32_t " + done + " = 0;");
    out_.line("const char *" + op + " = \"" + (item.down ? "LAST" : "FIRST") + "\";");
    open("while (" + done + "++ < " + count + " && tarn_table_count(" + walked + ") == " + count +
         " && tarn_table_find(" + op + ", " + walked + ", " + index + ", " + key + ", " + row + ")) {");
    stamp(item.line);
    out_.line(op + " = \"" + (item.down ? "PREVIOUS" : "NEXT") + "\";");
    out_.line("tarn_table_key_from_row(" + walked + ", " + index + ", " + row + ", " + key + ");");
    round(item);
}

// ---- the others ----

void StatementGenerator::leaveLoop(const Statement& item, const char* jump) {
    stamp(item.line);
    if (item.value) out_.line("if (" + out_.scalar(*item.value) + ")");
    out_.line(std::string(item.value ? "    " : "") + jump);
}

void StatementGenerator::select(const Statement& item) {
    stamp(item.line);
    const Kind kind = item.value->type->kind;
    const bool text = kind == Kind::String || kind == Kind::Record;
    const std::string value = text ? out_.address(*item.value) : out_.newName();
    if (!text) out_.line("const " + cType(kind) + " " + value + " = " + out_.scalar(*item.value) + ";");
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

std::string StatementGenerator::caseTest(const CaseLabel& label, const std::string& value, bool text) {
    if (label.from->type->kind == Kind::Record)
        return "tarn_adt_compare(\"EQ\", " + value + ", " + out_.address(*label.from) + ", " +
               cKind(Kind::Record) + ")";
    if (text) return "tarn_string_compare(" + value + ", " + out_.address(*label.from) + ") == 0";
    if (!label.to) return value + " == " + out_.scalar(*label.from);
    return value + " >= " + out_.scalar(*label.from) + " && " + value + " <= " + out_.scalar(*label.to);
}

void StatementGenerator::returned(const Statement& item) {
    stamp(item.line);
    const Kind kind = head_.result->kind;
    if (item.value && kind == Kind::String)
        out_.into(*item.value, "result");
    else if (item.value && isComposite(kind))
        out_.copy(out_.address(*item.value), "result", head_.result);
    else if (item.value)
        out_.line(std::string("r = ") + (sizeOf(kind) == 1 ? "(uint8_t)" : "") + out_.scalar(*item.value) +
                  ";");
    out_.line("goto leave;");
}

}  // namespace tarn::toolchain
