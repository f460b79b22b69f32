// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keys of a dialog and its menu: mnemonics, the default button, and the order of Tab.
#include "ide/designer/check/dlgcheck_internal.h"
#include "library/designer/propedit.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

namespace tarn::detail {
namespace {

std::int64_t right(const UnitRect& at) {
    return std::int64_t{at.x} + at.w;
}
std::int64_t bottom(const UnitRect& at) {
    return std::int64_t{at.y} + at.h;
}

// They stand in one line if half of the lower one is beside the other.
bool sameLine(const UnitRect& a, const UnitRect& b) {
    const std::int64_t shared = std::min(bottom(a), bottom(b)) - std::max(a.y, b.y);
    return 2 * shared > std::min(a.h, b.h);
}

// In upper case; empty if the caption has none. A letter of several bytes counts by its first.
std::string keyOf(std::string_view caption) {
    const auto mark = static_cast<std::size_t>(FINDMNEMONIC(caption));
    return mark == 0 ? std::string() : STRUPPER(caption.substr(mark, 1));
}

using Owners = std::map<std::string, const CheckedObject*>;

// The caption with the mark before its best free letter: the first of a word, else any; empty if there is none.
std::string withFreeKey(const std::string& caption, const Owners& owners) {
    std::string plain = caption;
    if (const int mark = FINDMNEMONIC(plain); mark > 0) plain.erase(static_cast<std::size_t>(mark) - 1, 1);
    // What stands behind a tab tells keys, and is no part of the caption.
    const std::size_t end = std::min(plain.find('\t'), plain.size());
    for (const bool first : {true, false})
        for (std::size_t at = 0; at < end; ++at) {
            const bool starts = at == 0 || ISSPACE(plain[at - 1]);
            if (starts != first || !ISALNUM(plain[at]) || owners.count(STRUPPER(plain.substr(at, 1))) != 0)
                continue;
            return plain.insert(at, "&");
        }
    return {};
}

std::string recaptioned(const CheckedObject& object, const Owners& owners) {
    const std::string caption = withFreeKey(object.caption, owners);
    return caption.empty() ? std::string()
                           : object.with("CAPTION", "\"" + STRREPLACE(caption, "\n", "\\n", false) + "\"");
}

// Objects of which each wants a key that no other has.
class KeyCheck {
public:
    KeyCheck(bool menu, Findings& findings) : menu_(menu), findings_(findings) {}
    // Those that have a key hold it, the first of two.
    void hold(const CheckedObject& object) {
        const std::string key = keyOf(object.caption);
        if (!key.empty()) owners_.emplace(key, &object);
    }
    void check(const CheckedObject& object, bool wants) {
        const std::string key = keyOf(object.caption);
        if (!key.empty() && owners_.at(key) != &object)
            add(object, object.told() + " has the mnemonic " + key + ", which " + owners_.at(key)->told() +
                            " has too. Put the & before another letter.");
        else if (key.empty() && wants)
            add(object,
                object.told() +
                    " has no mnemonic, so that no key picks it. Put a & before a letter of its caption.");
    }

private:
    // A letter that one repair takes is not free for the next.
    void add(const CheckedObject& object, std::string text) {
        std::string repair = recaptioned(object, owners_);
        if (!repair.empty()) owners_.emplace(keyOf(GETPROPVALUE(repair, "CAPTION")), &object);
        findings_.push_back({menu_, object.index, std::move(text), std::move(repair)});
    }
    bool menu_;
    Findings& findings_;
    Owners owners_;
};

// Return and Escape press these, or should.
bool hasKeyAlready(const CheckedObject& button) {
    return button.isDefault || button.isCancel || STREQUAL(button.caption, "OK") ||
           STREQUAL(button.caption, "Cancel");
}

// A label leads to the control directly behind it.
bool leads(const CheckedDialog& dialog, std::size_t n) {
    if (!dialog.controls[n].isA("Label") || n + 1 >= dialog.controls.size()) return false;
    const CheckedObject& next = dialog.controls[n + 1];
    return next.index == dialog.controls[n].index + 1 && next.is.wantsLabel && next.tabStop;
}

// The first and the last behind it of a group of radio buttons, which the arrow keys walk.
std::pair<std::size_t, std::size_t> groupOf(const CheckedDialog& dialog, std::size_t n) {
    const auto& all = dialog.controls;
    const auto belongs = [&](std::size_t other) {
        return all[other].isA("Radiobutton") && STREQUAL(all[other].array, all[n].array);
    };
    std::pair<std::size_t, std::size_t> group(n, n + 1);
    while (group.first > 0 && belongs(group.first - 1)) --group.first;
    while (group.second < all.size() && belongs(group.second)) ++group.second;
    return group;
}

// A key of one member, or of the label or the box before them, is enough for the group.
bool isReachedByGroup(const CheckedDialog& dialog, std::size_t n) {
    if (!dialog.controls[n].isA("Radiobutton")) return false;
    auto [first, end] = groupOf(dialog, n);
    if (first > 0 && (dialog.controls[first - 1].isA("Label") || dialog.controls[first - 1].isA("Groupbox")))
        --first;
    return std::any_of(dialog.controls.begin() + static_cast<std::ptrdiff_t>(first),
                       dialog.controls.begin() + static_cast<std::ptrdiff_t>(end),
                       [](const CheckedObject& one) { return !keyOf(one.caption).empty(); });
}

// A button that goes with the field before it, as one that chooses its value does, is one Tab away.
bool goesWithField(const CheckedDialog& dialog, std::size_t n) {
    if (n == 0 || !dialog.controls[n].isA("Pushbutton")) return false;
    const CheckedObject& field = dialog.controls[n - 1];
    return field.is.wantsLabel && field.index + 1 == dialog.controls[n].index &&
           sameLine(field.at, dialog.controls[n].at);
}

// Whether there is a letter that the mark could stand before; of other than the plain ones it is not known.
bool hasLetter(std::string_view caption) {
    return std::any_of(caption.begin(), caption.end(), ISALNUM);
}

bool wantsKey(const CheckedDialog& dialog, std::size_t n) {
    const CheckedObject& control = dialog.controls[n];
    if (leads(dialog, n)) return true;
    return control.is.wantsKey && control.tabStop && !hasKeyAlready(control) && hasLetter(control.caption) &&
           !isReachedByGroup(dialog, n) && !goesWithField(dialog, n);
}

bool isItem(const CheckedObject& item) {
    return item.caption.find_first_not_of('-') != std::string::npos;
}

}  // namespace

void checkKeys(const CheckedDialog& dialog, Findings& findings) {
    KeyCheck keys(false, findings);
    for (const CheckedObject& item : dialog.menu)
        if (item.at.x <= 1) keys.hold(item);
    for (const CheckedObject& control : dialog.controls)
        if (control.is.hasCaption) keys.hold(control);
    for (std::size_t n = 0; n < dialog.controls.size(); ++n) {
        const CheckedObject& control = dialog.controls[n];
        if (!control.is.hasCaption || control.caption.empty()) continue;
        keys.check(control, wantsKey(dialog, n));
    }
}

void checkMenuKeys(const CheckedDialog& dialog, Findings& findings) {
    const std::vector<CheckedObject>& items = dialog.menu;
    std::vector<bool> done(items.size());
    for (std::size_t first = 0; first < items.size(); ++first) {
        if (done[first]) continue;
        // What opens together: the items of this level up to the first one that is less deep.
        std::vector<const CheckedObject*> siblings;
        for (std::size_t n = first; n < items.size() && items[n].at.x >= items[first].at.x; ++n) {
            if (items[n].at.x != items[first].at.x) continue;
            done[n] = true;
            if (isItem(items[n])) siblings.push_back(&items[n]);
        }
        KeyCheck keys(true, findings);
        for (const CheckedObject* item : siblings) keys.hold(*item);
        // The keys of the menu bar are those of the dialog as well.
        if (items[first].at.x <= 1)
            for (const CheckedObject& control : dialog.controls)
                if (control.is.hasCaption) keys.hold(control);
        for (const CheckedObject* item : siblings) keys.check(*item, true);
    }
}

// ---- the default button ----

void checkDefaultButton(const CheckedDialog& dialog, Findings& findings) {
    const CheckedObject* candidate = nullptr;
    const CheckedObject* first = nullptr;
    for (const CheckedObject& control : dialog.controls) {
        if (!control.isA("Pushbutton")) continue;
        if (control.isDefault && first != nullptr)
            findings.push_back(
                {false, control.index,
                 control.told() + " and " + first->told() +
                     " are both the default button; Return presses the first. Set DEFAULT of one to 0.",
                 control.with("DEFAULT", "0")});
        if (control.isDefault && first == nullptr) first = &control;
        const bool better = candidate == nullptr || (candidate->isCancel && !control.isCancel);
        if (better || (STREQUAL(control.caption, "OK") && !STREQUAL(candidate->caption, "OK")))
            candidate = &control;
    }
    if (first != nullptr || candidate == nullptr) return;
    findings.push_back(
        {false, candidate->index,
         "No button is the default one, so that Return presses none. Set DEFAULT of one to 1, as of " +
             candidate->told() + ".",
         candidate->with("DEFAULT", "1")});
}

// ---- the order of Tab ----

namespace {

// A column may be read to its end before the next one, so a step to the right may lead up.
bool leadsBack(const UnitRect& from, const UnitRect& to) {
    if (sameLine(from, to)) return right(to) <= from.x;
    return bottom(to) <= from.y && to.x < right(from);
}

// A row of pictures above what they work on may come behind it, so that the keyboard begins there.
bool isTool(const CheckedObject& from, const CheckedObject& to) {
    return to.isA("Bitmapbutton") && !from.isA("Bitmapbutton");
}

}  // namespace

void checkOrder(const CheckedDialog& dialog, Findings& findings) {
    const CheckedObject* before = nullptr;
    // A text that is only read may come last, so that the keyboard begins where something can be done.
    for (const CheckedObject& control : dialog.controls) {
        if (!control.tabStop || control.readOnly) continue;
        if (before != nullptr && leadsBack(before->at, control.at) && !isTool(*before, control))
            findings.push_back({false, control.index,
                                "Tab leads from " + before->told() + " back to " + control.told() +
                                    ", which is read before it. Move it forward in the order of the objects.",
                                ""});
        before = &control;
    }
}

}  // namespace tarn::detail
