// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs_examples.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/values/records.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

#include <algorithm>

MODULE("commdlgs")

namespace tarn {
namespace {

constexpr std::string_view ReadmeName = "readme.txt";
constexpr int XmlFormat = 6;
constexpr std::int64_t MostReadme = 65536;  // bytes; a text beyond that is none for a window
// The values of the window that hold what it was opened with.
constexpr std::string_view FolderValue = "folder", HelpFileValue = "helpfile", TopicValue = "topic",
                           ResourcesValue = "resources", CompilerValue = "compiler";

std::string fieldOf(const RecordValue& record, int number) {
    String text;
    if (RecordFieldKind(record.get(), number) != KindString) return {};
    RecordGet(record.get(), number, text.get(), KindString);
    return std::string(text.view());
}

// The four fields as the file says them; false for a file of another form.
bool readFields(const std::string& readme, ExampleFields& fields) {
    const String type(
        "readme : record\n\ttitle : string\n\tdescription : string\n\tpicture : string\n\tfiles : "
        "string\nend record\n");
    RecordValue record;
    TypeInfoToRecord(type.get(), record.get());
    std::string text;
    if (os::readFile(readme, text) != os::FileError::None || text.find('<') == std::string::npos)
        return false;
    LOADFILE(readme, XmlFormat, record.get(), KindRecord);
    const bool good = ErrorCell() == 0;
    ClearError();
    fields = {fieldOf(record, 1), fieldOf(record, 2), fieldOf(record, 3), fieldOf(record, 4)};
    return good && !fields.title.empty();
}

bool isCaption(const std::string& caption, std::string_view word) {
    return caption == word || (caption.starts_with('&') && std::string_view(caption).substr(1) == word);
}

}  // namespace

ExampleFields SETEXAMPLEFIELDS(const std::string& readme, const PlaceholderFolders& folders) {
    FRAME(SETEXAMPLEFIELDS);
    STAMP();
    const std::string folder = FILEGETDIR(readme);
    ExampleFields fields;
    if (os::sizeOf(readme) <= MostReadme && !readFields(readme, fields)) {
        fields = {};
        os::readFile(readme, fields.description);
    }
    STAMP();
    if (fields.title.empty())
        fields.title = FILEGETFNAME(STRLEFT(folder, static_cast<int>(folder.size()) - 1));
    fields.description = FILERESOLVEPATHS(fields.description, folders);
    fields.picture = FILERESOLVEPATHS(fields.picture, folders);
    if (!fields.picture.empty() && !ISROOTED(fields.picture)) fields.picture = folder + fields.picture;
    return fields;
}

std::string GETMAINFILEFROMLIST(const std::string& files) {
    FRAME(GETMAINFILEFROMLIST);
    std::string only;
    int count = 0;
    STAMP();
    for (std::string_view rest = files; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string line = STRTRIM(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.starts_with('*')) return STRTRIM(line.substr(1));
        if (line.empty()) continue;
        only = line;
        ++count;
    }
    return count == 1 ? only : std::string();
}

std::vector<std::string> EXAMPLESIN(const std::string& folder) {
    FRAME(EXAMPLESIN);
    std::vector<std::string> names, examples;
    os::files().list(folder, names);
    for (const std::string& name : names)
        if (os::sizeOf(folder + name + "/" + std::string(ReadmeName)) >= 0) examples.push_back(name);
    std::sort(examples.begin(), examples.end(), [](const std::string& a, const std::string& b) {
        const std::string left = STRLOWER(a), right = STRLOWER(b);
        return left != right ? left < right : a < b;
    });
    return examples;
}

std::string EXAMPLEMAINFILE(const std::string& readme, const PlaceholderFolders& places) {
    FRAME(EXAMPLEMAINFILE);
    const std::string folder = FILEGETDIR(readme);
    const std::string named = GETMAINFILEFROMLIST(SETEXAMPLEFIELDS(readme, places).files);
    if (!named.empty()) return ISROOTED(named) ? named : folder + named;
    return folder + FILEGETFNAME(STRLEFT(folder, static_cast<int>(folder.size()) - 1)) + ".cls";
}

void DRAWPICTUREONTOIMAGE(const Object& image, const std::string& file) {
    FRAME(DRAWPICTUREONTOIMAGE);
    STAMP();
    Clear(image);
    const platform::Answer<Picture> picture = platform::LoadPicture(file);
    const Rect place = GetPosition(image, CLIENT_UNIT);
    const int w = picture.value.width, h = picture.value.height;
    if (file.empty() || picture.code != platform::Ok || w <= 0 || h <= 0) return;
    STAMP();
    const double scale = std::min({1.0, double(place.w) / w, double(place.h) / h});
    const int width = std::max(1, static_cast<int>(w * scale)),
              height = std::max(1, static_cast<int>(h * scale));
    StartGraph(image);
    DrawPicture(image, file, (place.w - width) / 2, (place.h - height) / 2, width, height);
    EndGraph(image);
    STAMP();
}

// ---- the window ----

namespace {

Object part(const Object& window, std::string_view name) {
    return FINDCONTROL(window, name);
}

PlaceholderFolders placesOf(const Object& window) {
    return {GetArrayValue(window, ResourcesValue), GetArrayValue(window, CompilerValue)};
}

// The text of the example that is chosen; empty if none is.
std::string chosenReadme(const Object& window) {
    const Object list = part(window, "iconlist1");
    const int row = GetListIndex(list);
    if (row == 0) return {};
    return GetArrayValue(window, FolderValue) + FILEADDSEPARATOR(GetList(list, row)) +
           std::string(ReadmeName);
}

std::string picture(std::string_view name) {
    return os::executableFolder() + std::string(name);
}

// The row that is chosen has the open folder.
void markChosen(const Object& list) {
    const int chosen = GetListIndex(list), count = GetListCount(list);
    for (int row = 1; row <= count; row++)
        SetList(list, row, GetList(list, row), picture(row == chosen ? "open3.bmp" : "open2.bmp"));
}

void showExample(const Object& window) {
    const std::string readme = chosenReadme(window);
    const ExampleFields fields =
        readme.empty() ? ExampleFields() : SETEXAMPLEFIELDS(readme, placesOf(window));
    markChosen(part(window, "iconlist1"));
    SetCaption(part(window, "label1"), PLAINCAPTION(fields.title));
    SetCaption(part(window, "label2"), PLAINCAPTION(fields.description));
    DRAWPICTUREONTOIMAGE(part(window, "image1"), fields.picture);
}

void press(const Object& window, const std::string& caption) {
    if (isCaption(caption, "Help"))
        return MULTIHELP(0, GetArrayValue(window, HelpFileValue), 257, GetArrayValue(window, TopicValue));
    if (!isCaption(caption, "Cancel") && chosenReadme(window).empty()) return Sound();
    SetCaption(part(window, "lbllastbutton"), caption);
    Hide(window);
}

bool keyPressed(const Object& window, int key) {
    if (key == KEY_ESCAPE) Hide(window);
    if (key == KEY_F1) press(window, "Help");
    return key == KEY_ESCAPE || key == KEY_F1;
}

bool openExampleDlg(const Object& window, int event, const Object& control, int parameter) {
    const std::string name = GetName(control);
    switch (event) {
    case CHANGE_EVENT: showExample(window); return true;
    case DBLCLICK_EVENT:
        if (name != "iconlist1") return false;
        press(window, GetCaption(part(window, "pushbutton1")));
        return true;
    case COMMAND_EVENT: press(window, GetCaption(control)); return true;
    case KEYPRESS_EVENT: return keyPressed(window, parameter);
    default: return false;
    }
}

void fill(const ExampleRequest& request) {
    const std::vector<std::string> examples = EXAMPLESIN(request.folder);
    const std::string count = STR(static_cast<int>(examples.size()));
    SetCaption(OpenExampleDlg,
               request.title + " (" + count + (examples.size() == 1 ? " example)" : " examples)"));
    SetFontBold(part(OpenExampleDlg, "label1"), true);
    const Object list = part(OpenExampleDlg, "iconlist1");
    for (const std::string& name : examples) AddItem(list, name, picture("open2.bmp"));
    SetListIndex(list, examples.empty() ? 0 : 1);
    for (int i = 1; !part(OpenExampleDlg, "pushbutton" + STR(i)).empty(); i++) {
        const Object button = part(OpenExampleDlg, "pushbutton" + STR(i));
        SetCaption(button, STRLINE(request.buttons, i));
        SetVisible(button, !STRLINE(request.buttons, i).empty());
    }
    showExample(OpenExampleDlg);
}

}  // namespace

ExampleChoice OPENEXAMPLEDIALOG(const ExampleRequest& request) {
    FRAME(OPENEXAMPLEDIALOG);
    STAMP();
    RegisterWindow(OpenExampleDlg, openExampleDlg);
    Load(OpenExampleDlg,
         {std::string(FolderValue) + "=" + request.folder,
          std::string(HelpFileValue) + "=" + request.helpFile, std::string(TopicValue) + "=" + request.topic,
          std::string(ResourcesValue) + "=" + request.places.resources,
          std::string(CompilerValue) + "=" + request.places.compiler});
    STAMP();
    fill(request);
    STAMP();
    Show(OpenExampleDlg, true);
    STAMP();
    if (!IsLoaded(OpenExampleDlg)) return {};
    const std::string readme = chosenReadme(OpenExampleDlg);
    const ExampleChoice choice{GetCaption(part(OpenExampleDlg, "lbllastbutton")),
                               readme.empty() ? "" : EXAMPLEMAINFILE(readme, request.places)};
    STAMP();
    Unload(OpenExampleDlg);
    STAMP();
    return choice;
}

}  // namespace tarn
