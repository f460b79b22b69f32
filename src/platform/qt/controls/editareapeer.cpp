// SPDX-License-Identifier: Apache-2.0
//
// The widget of the edit window, whose component stands in a library of its own, loaded when the first one is made.
#include "platform/qt/controls/textpeers.h"

#include "os/paths.h"
#include "os/process.h"
#include "platform/model/linemarks.h"
#include "platform/qt/controls/editarea.h"
#include "platform/qt/controls/textstores.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"

#include <QPointer>

#include <dlfcn.h>

namespace tarn::platform::qt {

namespace {

MakeEditArea loadEditLibrary() {
    static const MakeEditArea make = [] {
        Dl_info self{};
        std::string folder;
        if (dladdr(reinterpret_cast<void*>(&loadEditLibrary), &self) != 0 && self.dli_fname != nullptr)
            folder = os::folderPart(self.dli_fname);
        void* library = dlopen((folder + "libtarnwick-edit.so").c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            os::debugOutput(std::string("The edit window cannot be loaded: ") + dlerror() + "\n");
            return MakeEditArea(nullptr);
        }
        return reinterpret_cast<MakeEditArea>(dlsym(library, "tarn_make_edit_area"));
    }();
    return make;
}

class EditAreaPeer : public Peer, public EditEvents {
public:
    EditAreaPeer(Control& control, QWidget& holder) : Peer(control, holder) {
        area_ = loadEditLibrary()(&holder, *this);
        takeStore(control, area_->store());
        apply(Property::Caption);
        apply(Property::Looks);
        apply(Property::Blocks);
        apply(Property::MarkMargin);
    }
    QWidget* focusWidget() override { return area_->textWidget(); }

    void apply(Property property) override {
        switch (property) {
        case Property::Caption:  // the name of what it shows
            area_->setName(control_->caption.empty() ? QObject::tr("Text") : shown(control_->caption));
            break;
        case Property::Flags:
        case Property::Readonly:
            area_->setFlags(control_->flags | (control_->readonly ? READONLY : 0));
            break;
        case Property::MaxLength: area_->setMaxLength(control_->maxLength); break;
        case Property::Tokens: area_->setTokens(control_->tokens); break;
        case Property::Font: area_->setFont(control_->font); break;
        case Property::Looks: area_->setLooks(control_->looks, control_->tabWidth, control_->zoom); break;
        case Property::Blocks: area_->setBlocks(control_->blocks); break;
        case Property::MarkMargin: area_->setMarkMargin(control_->markMargin); break;
        case Property::Folded: area_->foldAll(control_->folded); break;
        case Property::Choices: area_->showChoices(control_->choices, control_->typed); break;
        case Property::CallTip:
            area_->showCallTip(control_->tipPlace, control_->callTip, control_->tipMark);
            break;
        case Property::Status: area_->setStatus(shown(control_->status)); break;
        case Property::Passing: area_->setPassing(shown(control_->passing)); break;
        default: break;
        }
    }
    void letGo() override { giveBackText(*control_); }

    void changed() override {
        if (control_ != nullptr) userChange(*control_);
    }
    void doubleClicked(QPoint at) override {
        if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
    }
    void infoAsked(QPoint at) override {
        if (control_ != nullptr) userInfo(*control_, at.x(), at.y());
    }
    void zoomed(int points) override {
        if (control_ != nullptr) control_->zoom = points;
    }
    bool nameClicked(int position) override {
        if (control_ == nullptr) return false;
        Window* const window = findWindow(control_->object);
        if (window == nullptr) return false;
        const QPointer<EditAreaPeer> alive(this);
        const Selection before = control_->text->selection();
        control_->text->select(position, 0);
        if (userKey(*window, control_, KEY_CTRL_CLICK) || alive.isNull()) return true;
        if (control_ != nullptr) control_->text->select(before.start, before.length);
        return false;
    }
    void marginClicked(int line) override {
        if (control_ != nullptr) userMarginClick(*control_, line);
    }
    QImage picture(const std::string& name, int size, qreal ratio) override {
        return pictureScaled(name, QSize(size, size), ratio).toImage();
    }

private:
    EditArea* area_ = nullptr;
};

// Fills its parent and lets its only child fill itself.
class Holder : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void resizeEvent(QResizeEvent*) override {
        for (QObject* child : children())
            if (auto* widget = qobject_cast<QWidget*>(child); widget != nullptr) widget->setGeometry(rect());
    }
};

}  // namespace

Peer* makeEditAreaPeer(Control& control, QWidget* parent) {
    if (loadEditLibrary() == nullptr) return makeLinesPeer(control, parent);
    return new EditAreaPeer(control, *new Holder(parent));
}

}  // namespace tarn::platform::qt
