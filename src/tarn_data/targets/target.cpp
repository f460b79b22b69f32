// SPDX-License-Identifier: Apache-2.0
//
// Which form is written, and the writing of whole files.
#include "kernel/data/datafile.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/targets/save_internal.h"

namespace tarn::datatool {

namespace {

Problem chooseTable(const Arguments& arguments, Target& target) {
    target.format = FormatBinary;
    if (arguments.to.any())
        return {"'" + target.file + "' is a table file, which has no separator, header or footer.",
                "Leave the --to-... options away.", WrongUsage};
    if (XbaseFileName(target.file) || isIndexName(target.file))
        return {"'" + target.file +
                    "' cannot be the name of a table file: its extension is that of another form.",
                "Choose another one; bin needs no --to-table.", WrongUsage};
    if (arguments.type.empty())
        return {
            "'" + target.file + "' is a table file, whose rows must be declared.",
            "Give --type=FILE, a text file with type information text; what 'tarn-data info' prints of the "
            "file that is read will do.",
            WrongUsage};
    Problem problem = readRowType(arguments.type, target.type);
    std::vector<std::int32_t> maps;
    if (!problem.any()) problem = keyMapsOf(arguments.keys, target.type, maps);
    target.keys = arguments.keys;
    return problem;
}

Problem chooseLayout(const Layout& layout, Target& target) {
    if (target.format == FormatText && layout.separator) target.format = FormatTab;
    target.options = DefaultDataOptions(target.format);
    if (target.format == FormatText && layout.any())
        return {"'" + target.file + "' is lines of text, which have no header or footer.",
                "--to-separator=C makes it delimited text.", WrongUsage};
    if (layout.separator) target.options.separatorchar = *layout.separator;
    target.options.numfooterrows = layout.footerRows.value_or(0);
    return {};
}

}  // namespace

Problem chooseTarget(const std::string& file, const Arguments& arguments, Target& target) {
    target.file = file;
    target.format = DataFormatOf(file);
    target.plain = arguments.plain;
    target.replace = arguments.replace;
    target.headerRows = arguments.to.headerRows;
    const Problem problem = problemOfTarget(file);
    if (problem.any()) return problem;
    if (arguments.toTable || target.format == FormatBinary) return chooseTable(arguments, target);
    if (target.format == FormatUnknown)
        return {"'" + file + "' cannot be written: its extension is none of " + DataFormatNames("and") + ".",
                "The extension of the second file decides what is written; --to-table writes a table file "
                "under any name.",
                WrongUsage};
    if (!arguments.keys.empty())
        return {"'" + file + "' is no table file, so that --keys means nothing for it.",
                "--to-table writes a table file.", WrongUsage};
    if (RowsAreLines(target.format)) return chooseLayout(arguments.to, target);
    if (arguments.to.any())
        return {"'" + file + "' is " + std::string(FactsOf(target.format).word) +
                    ", which has no separator, header or footer.",
                "Leave the --to-... options away.", WrongUsage};
    target.options = DefaultDataOptions(target.format);
    return {};
}

Problem unwritable(const std::string& file, std::string_view why) {
    const os::FileInfo info = os::infoOf(os::native(file));
    if (why.ends_with('.')) why.remove_suffix(1);
    const std::string what = fileWord(file) + "cannot be written: ";
    if (info.exists && !info.folder && !info.special && !info.writable)
        return {what + "it is protected against writing.",
                "Allow it with chmod u+w, or choose another name. The file is as it was."};
    return {what + std::string(why) + ".",
            "Look whether its folder is there and may be written, and whether the disk has room. " +
                std::string(info.exists ? "The file is as it was." : "No file was made.")};
}

Problem stoppedAhead(const std::string& file) {
    return {"Stopped.", "'" + file + "' is as it was."};
}

Problem OutFile::finish() {
    if (stopSignal() != 0) return stopped();
    const os::SaveResult saved = stream_.finish();
    return saved.ok() ? Problem() : unwritable(file_, ErrorMessage(FileWriteCode(saved.error)));
}

}  // namespace tarn::datatool
