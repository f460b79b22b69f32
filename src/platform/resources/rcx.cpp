// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/rcx.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "platform/resources/resource.h"
#include "platform/text.h"
#include "platform/windowing.h"

#include <cstring>
#include <memory>
#include <optional>
#include <set>

namespace tarn::platform {

namespace {

constexpr std::string_view magic = "TRCX";
constexpr std::uint32_t formatVersion = 1;
constexpr std::size_t headerSize = 32;

// ---- bytes ----

void put(std::string& bytes, std::uint64_t number, int size) {
    for (int i = 0; i < size; ++i, number >>= 8U) bytes += static_cast<char>(number & 255U);
}

void putText(std::string& bytes, std::string_view text) {
    put(bytes, text.size(), 4);
    bytes += text;
}

// Reads forward and never behind the end; `bad` stays set once something was not there.
struct Reader {
    std::string_view rest;
    bool bad = false;

    std::uint64_t number(std::size_t size) {
        if (rest.size() < size) return bad = true, 0;
        std::uint64_t value = 0;
        for (std::size_t i = size; i-- > 0;) value = value << 8U | static_cast<unsigned char>(rest[i]);
        rest.remove_prefix(size);
        return value;
    }
    std::string_view text() {
        const std::size_t size = number(4);
        if (bad || rest.size() < size) return bad = true, std::string_view();
        const std::string_view result = rest.substr(0, size);
        rest.remove_prefix(size);
        return result;
    }
    // A count of things that take at least `least` bytes each.
    std::size_t count(std::size_t size, std::size_t least) {
        const std::size_t value = number(size);
        if (value > rest.size() / least) return bad = true, 0;
        return value;
    }
};

std::uint64_t checksum(std::string_view bytes) {
    std::uint64_t sum = 0x9E3779B97F4A7C15U ^ bytes.size();
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, 8);
        sum = (sum ^ word) * 0xFF51AFD7ED558CCDU;
        sum ^= sum >> 32U;
    }
    for (; at < bytes.size(); ++at) sum = (sum ^ static_cast<unsigned char>(bytes[at])) * 0x100000001B3U;
    return sum;
}

void putObject(std::string& bytes, const ObjectTemplate& object) {
    put(bytes, static_cast<std::uint64_t>(object.type), 1);
    put(bytes, static_cast<std::uint32_t>(object.number), 4);
    putText(bytes, object.name);
    put(bytes, object.properties.size(), 2);
    for (const auto& [name, value] : object.properties) {
        putText(bytes, name);
        putText(bytes, value);
    }
}

ObjectTemplate readObject(Reader& reader) {
    ObjectTemplate object;
    object.type = static_cast<Type>(reader.number(1));
    object.number = static_cast<int>(reader.number(4));
    object.name = reader.text();
    if (propertiesOf(object.type).empty()) reader.bad = true;
    const std::size_t count = reader.count(2, 8);
    object.properties.reserve(count);
    for (std::size_t i = 0; i < count && !reader.bad; ++i) {
        const std::string_view name = reader.text();
        object.properties.emplace_back(name, reader.text());
    }
    return object;
}

std::vector<ObjectTemplate> readObjects(Reader& reader, bool menu) {
    std::vector<ObjectTemplate> objects;
    const std::size_t count = reader.count(4, 11);
    for (std::size_t i = 0; i < count && !reader.bad; ++i) {
        objects.push_back(readObject(reader));
        const Type type = objects.back().type;
        if (isWindowType(type) || (type == Type::Menuitem) != menu) reader.bad = true;
    }
    return objects;
}

}  // namespace

bool isCompiledResource(std::string_view bytes) {
    return bytes.starts_with(magic);
}

std::string encodeWindow(const WindowTemplate& window) {
    std::string bytes;
    putObject(bytes, window.window);
    for (const auto* objects : {&window.controls, &window.menu}) {
        put(bytes, objects->size(), 4);
        for (const ObjectTemplate& object : *objects) putObject(bytes, object);
    }
    return bytes;
}

std::string encodeResources(const std::vector<CompiledEntry>& entries,
                            const std::map<std::string, int, LessText>& symbols) {
    std::size_t dataBegin = headerSize, offset = 0;
    for (const CompiledEntry& entry : entries)
        dataBegin += 20 + entry.kind.size() + entry.name.size() + entry.line.size();
    for (const auto& [name, number] : symbols) dataBegin += 8 + name.size();
    std::string rest;
    for (const CompiledEntry& entry : entries) {
        for (const std::string* text : {&entry.kind, &entry.name, &entry.line}) putText(rest, *text);
        put(rest, dataBegin + offset, 4);
        put(rest, entry.data.size(), 4);
        offset += entry.data.size();
    }
    for (const auto& [name, number] : symbols) {
        putText(rest, name);
        put(rest, static_cast<std::uint32_t>(number), 4);
    }
    for (const CompiledEntry& entry : entries) rest += entry.data;
    std::string bytes(magic);
    for (const std::size_t number :
         {std::size_t{formatVersion}, headerSize + rest.size(), entries.size(), symbols.size(), dataBegin})
        put(bytes, number, 4);
    put(bytes, checksum(rest), 8);
    return bytes + rest;
}

std::string CompiledResources::open(std::string bytes) {
    clear();
    bytes_ = std::move(bytes);
    Reader reader{bytes_};
    const auto damaged = [this] {
        clear();
        return "The compiled resources are damaged.";
    };
    if (bytes_.size() < headerSize || !isCompiledResource(bytes_)) return damaged();
    reader.rest.remove_prefix(magic.size());
    if (reader.number(4) != formatVersion) return clear(), "The compiled resources have another format.";
    if (reader.number(4) != bytes_.size()) return damaged();
    const std::size_t entries = reader.number(4), symbols = reader.number(4), dataBegin = reader.number(4);
    if (reader.number(8) != checksum(reader.rest)) return damaged();
    for (std::size_t i = 0; i < entries; ++i) {
        Entry entry;
        entry.kind = reader.text();
        entry.name = reader.text();
        entry.line = reader.text();
        const std::size_t offset = reader.number(4), size = reader.number(4);
        if (reader.bad || offset < dataBegin || offset > bytes_.size() || size > bytes_.size() - offset)
            return damaged();
        entry.data = std::string_view(bytes_).substr(offset, size);
        if (isWindowType(typeFromName(entry.kind))) windows_.emplace(entry.name, i);
        if (entry.kind == "BITMAP") pictures_.emplace(entry.name, i);
        entries_.push_back(std::move(entry));
    }
    for (std::size_t i = 0; i < symbols; ++i) {
        const std::string_view name = reader.text();
        const auto number = static_cast<int>(reader.number(4));
        if (reader.bad) return damaged();
        symbols_.emplace(name, number);
    }
    if (bytes_.size() - reader.rest.size() != dataBegin) return damaged();
    return "";
}

void CompiledResources::clear() {
    bytes_.clear();
    entries_.clear();
    windows_.clear();
    pictures_.clear();
    symbols_.clear();
}

bool CompiledResources::window(std::string_view name, WindowTemplate& result) const {
    const auto place = windows_.find(name);
    if (place == windows_.end()) return false;
    Reader reader{entries_[place->second].data};
    result.window = readObject(reader);
    if (!isWindowType(result.window.type)) reader.bad = true;
    result.controls = readObjects(reader, false);
    result.menu = readObjects(reader, true);
    return !reader.bad;
}

const std::string_view* CompiledResources::picture(std::string_view name) const {
    const auto place = pictures_.find(name);
    return place == pictures_.end() ? nullptr : &entries_[place->second].data;
}

int CompiledResources::symbol(std::string_view name) const {
    const auto place = symbols_.find(name);
    return place == symbols_.end() ? commonId(name) : place->second;
}

std::string CompiledResources::info(const std::string& kind, const std::string& name) const {
    std::string text;
    if (sameText(kind, "CONTROLS")) {
        WindowTemplate window_;
        if (!window(name, window_)) return "";
        for (const auto* objects : {&window_.controls, &window_.menu})
            for (const ObjectTemplate& object : *objects)
                if (!object.name.empty())
                    text += object.name + " " +
                            std::to_string(wholeNumber(object.name).value_or(object.number)) + "\n";
        return text;
    }
    for (const Entry& entry : entries_) {
        const bool isWindow = isWindowType(typeFromName(entry.kind));
        if (kind != "*" && !sameText(kind, entry.kind) && !(isWindow && sameText(kind, "DIALOG"))) continue;
        if (name != "*" && !sameText(name, entry.name)) continue;
        const bool whole = name != "*" && entry.kind == "VERSIONINFO";
        text += kind == "*" && name == "*" ? entry.name : whole ? std::string(entry.data) : entry.line;
        text += "\n";
        if (name != "*") break;
    }
    return text;
}

// ---- from text ----

namespace {

bool isNumberList(std::string_view value, int count) {
    for (int i = 0; i < count; ++i) {
        value = trim(value);
        const std::size_t end = std::min(value.find_first_of(" \t"), value.size());
        if (!wholeNumber(value.substr(0, end))) return false;
        value.remove_prefix(end);
    }
    return trim(value).empty();
}

// What is wrong with a value; empty if it is right.
std::string wrongValue(const RcObject& object, const RcProperty& property) {
    const PropertyRow* const row = findProperty(object.type, property.name);
    // A window whose type has been changed keeps the properties of the other.
    if (row == nullptr && isWindowType(object.type) &&
        findProperty(Type::Editwindow, property.name) != nullptr)
        return "";
    if (row == nullptr)
        return "A " + std::string(typeName(object.type)) + " has no property " + property.name + ".";
    if (!isNumeric(*row)) return "";
    const bool list = row->options.starts_with("INTEGER[");
    const std::string value = row->options.starts_with("ENUM")
                                  ? normalValue(object.type, row->name, property.value)
                                  : property.value;
    const bool good = list ? isNumberList(value, 4) : wholeNumber(value).has_value();
    return good ? "" : property.name + " should be " + (list ? "four numbers." : "a number.");
}

std::string propertyFault(const RcObject& object, int& line) {
    for (const RcProperty& property : object.properties) {
        line = property.lineNumber;
        if (std::string text = wrongValue(object, property); !text.empty()) return text;
    }
    return "";
}

constexpr int firstFreeNumber = 20'000;  // for objects that the text gives none

class TemplateMaker {
public:
    TemplateMaker(const RcFile& file, const RcFile* menuFile) : file_(file), menuFile_(menuFile) {}
    RcFault make(const RcStatement& window, const RcStatement* menu, WindowTemplate& result);

private:
    bool objects(const RcFile& file, const std::vector<RcObject>& from, int syntax,
                 std::vector<ObjectTemplate>& to);
    bool fail(int line, int number, std::string text) {
        fault_ = {line, number, std::move(text)};
        return false;
    }
    void numberTheRest(std::vector<ObjectTemplate>& objects);

    const RcFile& file_;
    const RcFile* menuFile_;
    RcFault fault_;
    std::set<int> used_;
    int next_ = firstFreeNumber;
};

bool TemplateMaker::objects(const RcFile& file, const std::vector<RcObject>& from, int syntax,
                            std::vector<ObjectTemplate>& to) {
    for (const RcObject& object : from) {
        int line = object.lineNumber;
        if (std::string text = propertyFault(object, line); !text.empty())
            return fail(line, syntax, std::move(text));
        int number = file.numberOf(object);
        if (number == 0 && !object.number.empty())
            return fail(object.lineNumber, 723, "'" + object.number + "' is no number and no symbol.");
        if (number == -1 && object.name.empty()) number = 0;  // it asks for none of its own
        if (number < 0) return fail(object.lineNumber, 723, "The number of a control must be positive.");
        if (number != 0 && !used_.insert(number).second)
            return fail(object.lineNumber, 723,
                        "The number " + std::to_string(number) + " is already used in this window.");
        to.push_back({object.type, number, object.givenName(), object.values()});
    }
    return true;
}

void TemplateMaker::numberTheRest(std::vector<ObjectTemplate>& objects) {
    for (ObjectTemplate& object : objects) {
        if (object.number != 0) continue;
        while (!used_.insert(next_).second) ++next_;
        object.number = next_;
    }
}

RcFault TemplateMaker::make(const RcStatement& window, const RcStatement* menu, WindowTemplate& result) {
    result = {};
    for (const RcStatement* const statement : {&window, menu})
        if (statement != nullptr && !statement->fault.empty()) return statement->fault;
    int line = window.lineNumber;
    if (std::string text = propertyFault(window.self, line); !text.empty())
        return fail(line, 725, std::move(text)), fault_;
    if (window.objects.size() > MAX_CONTROLS || (menu != nullptr && menu->objects.size() > MAX_CONTROLS))
        return {window.lineNumber, 725,
                "'" + window.name + "' has more than " + std::to_string(MAX_CONTROLS) + " objects."};
    result.window = {window.self.type, 0, window.name, window.self.values()};
    const std::string_view menuName = valueOf(result.window.properties, window.self.type, "MENU");
    if (!menuName.empty() && menu == nullptr)
        return {window.lineNumber, 722, "The menu '" + std::string(menuName) + "' was not found."};
    if (!objects(file_, window.objects, 725, result.controls)) return fault_;
    if (menu != nullptr && !objects(*menuFile_, menu->objects, 726, result.menu)) return fault_;
    numberTheRest(result.controls);
    numberTheRest(result.menu);
    return {};
}

// A range from 0 to 0, as a new object has it, is one that nobody has told yet.
void fillRanges(std::vector<ObjectTemplate>& objects) {
    for (ObjectTemplate& object : objects)
        for (auto& [name, value] : object.properties)
            if (name == "MAXIMUM" && wholeNumber(value) == 0 &&
                wholeNumber(valueOf(object.properties, object.type, "MINIMUM")) == 0)
                value = findProperty(object.type, name)->missing;
}

}  // namespace

RcFault makeTemplate(const RcFile& file, const RcStatement& window, const RcFile* menuFile,
                     const RcStatement* menu, WindowTemplate& result) {
    RcFault fault = TemplateMaker(file, menuFile).make(window, menu, result);
    fillRanges(result.controls);
    return fault;
}

RcFault makeTemplate(const RcFile& file, std::string_view name, WindowTemplate& result) {
    const RcStatement* const window = file.find(RcKind::Window, name);
    if (window == nullptr) return {1, 721, "'" + std::string(name) + "' was not found."};
    const std::string menu(valueOf(window->self.values(), window->self.type, "MENU"));
    return makeTemplate(file, *window, &file, menu.empty() ? nullptr : file.find(RcKind::Menu, menu), result);
}

// ---- the application ----

namespace {

struct Application {
    std::string file;  // empty until it is known
    std::unique_ptr<CompiledResources> resources;
};

Application& application() {
    static Application one;
    return one;
}

std::string usualFile() {
    return os::withoutExtension(os::executablePath()) + ".rcx";
}

}  // namespace

void SetApplicationResources(const std::string& rcxFile) {
    application().file = rcxFile;
    application().resources.reset();
}

const std::string& ApplicationResources() {
    if (application().file.empty()) application().file = usualFile();
    return application().file;
}

const CompiledResources& applicationResources() {
    Application& app = application();
    if (app.resources == nullptr) {
        app.resources = std::make_unique<CompiledResources>();
        std::string bytes;
        if (os::readFile(ApplicationResources(), bytes) == os::FileError::None)
            static_cast<void>(app.resources->open(std::move(bytes)));  // damaged ones hold nothing
    }
    return *app.resources;
}

int ResourceValue(const std::string& name) {
    return applicationResources().symbol(name);
}

Answer<std::string> PictureBytes(const std::string& name) {
    if (name.empty()) return {"", BitmapInvalid};
    if (const std::string_view* const bytes = applicationResources().picture(name))
        return {std::string(*bytes), Ok};
    std::string path = os::native(name), bytes;
    if (!path.starts_with('/')) path = os::folderPart(ApplicationResources()) + path;
    if (os::readFile(path, bytes) != os::FileError::None || bytes.empty()) return {"", BitmapInvalid};
    return {std::move(bytes), Ok};
}

}  // namespace tarn::platform
