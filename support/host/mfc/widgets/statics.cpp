// Labels, frames, lines, icons and pictures.
#include "host/mfc/modulestate.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/factory.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>

namespace host {
namespace {

class StaticWindow : public HWND__ {
public:
    StaticWindow(QLabel* made, const WindowSpec& spec)
        : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
        const DWORD type = style & SS_TYPEMASK;
        made->setTextFormat(Qt::PlainText);
        made->setAttribute(Qt::WA_TransparentForMouseEvents, (style & SS_NOTIFY) == 0);
        if (type == SS_ETCHEDHORZ || type == SS_ETCHEDVERT) {
            made->setFrameStyle((type == SS_ETCHEDHORZ ? QFrame::HLine : QFrame::VLine) | QFrame::Sunken);
        } else if (type == SS_ETCHEDFRAME || type == SS_BLACKFRAME || type == SS_GRAYFRAME) {
            made->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        } else if (type == SS_ICON || type == SS_BITMAP) {
            showPicture(spec.image);
        } else {
            align();
            StaticWindow::setText(spec.text);
        }
        if ((style & SS_SUNKEN) != 0)
            made->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    }

    QLabel& label() const { return static_cast<QLabel&>(*widget); }
    std::wstring kind() const override { return L"标签"; }
    std::wstring text() const override { return text_; }
    void setText(const std::wstring& text) override {
        text_ = text;
        if ((style & SS_NOPREFIX) != 0) { // the toolkit would take & for a mnemonic
            label().setText(toQt(text).replace("&", "&&"));
        } else {
            label().setText(toQt(text));
        }
    }
    void setPicture(const QPixmap& picture) { label().setPixmap(picture); }

protected:
    bool filter(QEvent* event) override {
        if (event->type() == QEvent::Paint)
            askColor(WM_CTLCOLORSTATIC, QPalette::WindowText);
        if (event->type() == QEvent::MouseButtonRelease && (style & SS_NOTIFY) != 0)
            command(STN_CLICKED);
        return HWND__::filter(event);
    }

private:
    void align() {
        const DWORD type = style & SS_TYPEMASK;
        const bool middle = (style & SS_CENTERIMAGE) != 0;
        label().setAlignment((type == SS_CENTER  ? Qt::AlignHCenter
                              : type == SS_RIGHT ? Qt::AlignRight
                                                 : Qt::AlignLeft) |
                             (middle ? Qt::AlignVCenter : Qt::AlignTop));
        label().setWordWrap(!middle && type != SS_SIMPLE && type != SS_LEFTNOWORDWRAP);
    }
    void showPicture(UINT image) {
        const bool isIcon = (style & SS_TYPEMASK) == SS_ICON;
        for (const HINSTANCE module : resourceModules()) {
            const QPixmap picture = isIcon
                                        ? iconResource(module, MAKEINTRESOURCE(image))
                                        : QPixmap::fromImage(bitmapResource(module, MAKEINTRESOURCE(image)));
            if (!picture.isNull()) {
                label().setPixmap(picture);
                return;
            }
        }
    }

    std::wstring text_;
};

} // namespace

HWND makeStatic(const WindowSpec& spec) {
    return new StaticWindow(new QLabel(spec.parentWidget()), spec);
}

void attachLabel(HWND label, HWND control) {
    if (auto* window = dynamic_cast<StaticWindow*>(label); window != nullptr && !control->widget.isNull())
        window->label().setBuddy(control->widget);
}

void setStaticPicture(HWND label, const QPixmap& picture) {
    if (auto* window = dynamic_cast<StaticWindow*>(label))
        window->setPicture(picture);
}

} // namespace host
