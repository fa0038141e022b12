#include "dialog_window.h"

#include "control_widgets.h"
#include "errtrace.h"
#include "qt_host.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScreen>
#include <QStyleOptionSizeGrip>
#include <QTextEdit>

#include <algorithm>

namespace korv::ui::qt {

namespace {

constexpr unsigned kKnownStyles = style::hidden | style::disabled | style::group | style::sorted |
                                  style::read_only | style::multi_line | style::vscroll |
                                  style::hscroll;

bool known_kind(ControlKind kind) {
    switch (kind) {
    case ControlKind::Button:
    case ControlKind::DefaultButton:
    case ControlKind::BitmapButton:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
    case ControlKind::StaticText:
    case ControlKind::Bitmap:
    case ControlKind::Frame:
    case ControlKind::Edit:
    case ControlKind::ListBox:
    case ControlKind::ComboBox:
    case ControlKind::RichEdit:
        return true;
    }
    return false;
}

// Multi-line edits hold CR LF line ends in the model.
QString to_lines(const std::string& text) {
    QString lines = to_qt(text);
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return lines;
}

std::string from_lines(const QString& lines) {
    QString text = lines;
    text.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return from_qt(text);
}

QColor from_colorref(COLORREF colour) {
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

template <typename List> void sync_items(List* list, const ControlState& c) {
    bool same = list->count() == static_cast<int>(c.items.size());
    for (int i = 0; same && i < list->count(); ++i)
        same = list->itemText(i) == to_qt(c.items[static_cast<std::size_t>(i)].text);
    if (same)
        return;
    list->clear();
    QStringList texts;
    for (const ListItem& item : c.items)
        texts << to_qt(item.text);
    list->addItems(texts);
}

// QListWidget names its item texts differently from QComboBox.
class ListBoxWidget : public QListWidget {
public:
    using QListWidget::QListWidget;
    QString itemText(int row) const { return item(row)->text(); }
};

} // namespace

DialogWindow::DialogWindow(QtHost& host, CDialog& dialog, QWidget* parent, bool top_level)
    : QWidget(parent, top_level ? Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                      Qt::WindowCloseButtonHint
                                : Qt::Widget),
      m_host(host), m_dialog(dialog), m_topLevel(top_level) {
    setObjectName(QStringLiteral("dialog%1").arg(dialog.template_id()));
    setFont(host.dialog_font());
    setAutoFillBackground(true);
    if (!top_level)
        hide(); // until the model shows the child
    m_host.add_window(&dialog, this);
    build();
}

DialogWindow::~DialogWindow() {
    m_host.remove_window(&m_dialog, this); // the address only: the dialog may be gone
}

QWidget* DialogWindow::control_widget(std::size_t index) const {
    return index < m_items.size() ? m_items[index].widget : nullptr;
}

void DialogWindow::build() {
    const std::vector<ControlState>& controls = m_dialog.controls();
    m_items.resize(controls.size());
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const ControlState& c = controls[i];
        if (c.styles & ~kKnownStyles)
            KERRLOG("build(): dialog %d, control %d has unknown style bits 0x%x, left out",
                    m_dialog.template_id(), c.id, c.styles & ~kKnownStyles);
        QWidget* widget = make_widget(c);
        widget->setObjectName(QStringLiteral("control%1").arg(c.id));
        widget->setProperty("korv_index", static_cast<qulonglong>(i));
        m_items[i].widget = widget;
        // Group boxes and frames lie beneath what they hold and take no clicks.
        if (c.kind == ControlKind::Frame) {
            widget->setAttribute(Qt::WA_TransparentForMouseEvents);
            widget->lower();
        }
    }
}

QWidget* DialogWindow::make_widget(const ControlState& c) {
    const std::size_t index = static_cast<std::size_t>(&c - m_dialog.controls().data());
    auto click = [this, index] { input(index, [](CDialog& d, int id) { d.UserClick(id); }); };
    switch (c.kind) {
    case ControlKind::Button:
    case ControlKind::DefaultButton: {
        auto* button = new QPushButton(this);
        button->setAutoDefault(false);
        button->setDefault(c.kind == ControlKind::DefaultButton);
        connect(button, &QPushButton::clicked, this, click);
        return button;
    }
    case ControlKind::BitmapButton: {
        auto* button = new BitmapButton(this);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, click);
        return button;
    }
    case ControlKind::CheckBox: {
        auto* box = new QCheckBox(this);
        connect(box, &QCheckBox::clicked, this, click);
        return box;
    }
    case ControlKind::RadioButton: {
        auto* radio = new QRadioButton(this);
        radio->setAutoExclusive(false);  // the model keeps the groups
        radio->installEventFilter(this); // and arrow keys move in them
        connect(radio, &QRadioButton::clicked, this, click);
        return radio;
    }
    case ControlKind::Frame:
        if (!c.caption.empty())
            return new QGroupBox(this);
        else {
            auto* frame = new QFrame(this);
            frame->setFrameStyle(QFrame::Box | QFrame::Sunken);
            return frame;
        }
    case ControlKind::Edit:
        if (c.has(style::multi_line)) {
            auto* edit = new QPlainTextEdit(this);
            edit->setLineWrapMode(c.has(style::hscroll) ? QPlainTextEdit::NoWrap
                                                        : QPlainTextEdit::WidgetWidth);
            connect(edit, &QPlainTextEdit::textChanged, this, [this, index, edit] {
                const std::string text = from_lines(edit->toPlainText());
                input(index, [&text](CDialog& d, int id) { d.UserSetText(id, text); });
            });
            return edit;
        } else {
            auto* edit = new QLineEdit(this);
            connect(edit, &QLineEdit::textEdited, this, [this, index](const QString& value) {
                const std::string text = from_qt(value);
                input(index, [&text](CDialog& d, int id) { d.UserSetText(id, text); });
            });
            return edit;
        }
    case ControlKind::RichEdit: {
        auto* edit = new QTextEdit(this);
        edit->setAcceptRichText(false);
        connect(edit, &QTextEdit::textChanged, this, [this, index, edit] {
            const std::string text = from_lines(edit->toPlainText());
            input(index, [&text](CDialog& d, int id) { d.UserSetText(id, text); });
        });
        return edit;
    }
    case ControlKind::ListBox: {
        auto* list = new ListBoxWidget(this);
        connect(list, &QListWidget::currentRowChanged, this, [this, index](int row) {
            if (row >= 0 && row != m_dialog.controls()[index].selection)
                input(index, [row](CDialog& d, int id) { d.UserSelect(id, row); });
        });
        connect(list, &QListWidget::itemDoubleClicked, this,
                [this, index, list](QListWidgetItem* item) {
                    const int row = list->row(item);
                    // The first click of the two selected it already.
                    const int select = row == m_dialog.controls()[index].selection ? -1 : row;
                    input(index, [select](CDialog& d, int id) { d.UserDoubleClick(id, select); });
                });
        return list;
    }
    case ControlKind::ComboBox: {
        auto* combo = new QComboBox(this);
        combo->setEditable(false);
        connect(combo, &QComboBox::activated, this, [this, index](int row) {
            if (row != m_dialog.controls()[index].selection)
                input(index, [row](CDialog& d, int id) { d.UserSelect(id, row); });
        });
        return combo;
    }
    case ControlKind::StaticText:
    case ControlKind::Bitmap:
        break;
    }
    if (!known_kind(c.kind))
        KERRLOG("make_widget(): dialog %d, control %d has the unknown kind %d, shown as static "
                "text",
                m_dialog.template_id(), c.id, static_cast<int>(c.kind));
    auto* label = new QLabel(this);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

void DialogWindow::sync_all() {
    sync_window();
}

void DialogWindow::sync_controls(int id) {
    if (!m_attached)
        return;
    const std::vector<ControlState>& controls = m_dialog.controls();
    for (std::size_t i = 0; i < controls.size() && i < m_items.size(); ++i)
        if (controls[i].id == id)
            sync_item(i);
}

void DialogWindow::sync_item(std::size_t index) {
    // A dialog whose window went has no controls left to show.
    if (index >= m_dialog.controls().size() || index >= m_items.size())
        return;
    const ControlState& c = m_dialog.controls()[index];
    Item& item = m_items[index];
    QWidget* w = item.widget;
    const bool was_syncing = m_syncing;
    m_syncing = true;
    const QString text = to_qt(c.window_text());
    QRect place = m_host.units().rect(c.rect);
    w->setEnabled(c.enabled);
    w->setToolTip(m_dialog.tool_tips_active() && !c.tip.empty() ? to_qt(c.tip) : QString());

    if (auto* button = dynamic_cast<BitmapButton*>(w)) {
        // Only the up image must be there; the others fall back to it.
        const auto image = [this, &c](std::size_t i) {
            return i < c.images.size() && !c.images[i].empty()
                       ? m_host.images().find(c.images[i], i == 0)
                       : QPixmap();
        };
        button->set_images(image(0), image(1), image(2), image(3));
        button->setText(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
        button->setText(text);
        if (auto* box = qobject_cast<QCheckBox*>(w)) {
            box->setTristate(c.check == BST_INDETERMINATE);
            box->setCheckState(c.check == BST_CHECKED         ? Qt::Checked
                               : c.check == BST_INDETERMINATE ? Qt::PartiallyChecked
                                                              : Qt::Unchecked);
        } else if (auto* radio = qobject_cast<QRadioButton*>(w)) {
            radio->setChecked(c.check == BST_CHECKED);
        }
    } else if (auto* group = qobject_cast<QGroupBox*>(w)) {
        group->setTitle(text);
    } else if (auto* edit = qobject_cast<QLineEdit*>(w)) {
        if (edit->text() != text)
            edit->setText(text);
        edit->setReadOnly(c.has(style::read_only));
    } else if (auto* edit = qobject_cast<QPlainTextEdit*>(w)) {
        const QString lines = to_lines(c.text);
        if (edit->toPlainText() != lines)
            edit->setPlainText(lines);
        edit->setReadOnly(c.has(style::read_only));
    } else if (auto* edit = qobject_cast<QTextEdit*>(w)) {
        const QString lines = to_lines(c.text);
        if (edit->toPlainText() != lines)
            edit->setPlainText(lines);
        edit->setReadOnly(c.has(style::read_only));
        QPalette palette = edit->palette();
        palette.setColor(QPalette::Base, c.background == ControlState::kSystemColour
                                             ? QApplication::palette().color(QPalette::Base)
                                             : from_colorref(c.background));
        edit->setPalette(palette);
    } else if (auto* list = dynamic_cast<ListBoxWidget*>(w)) {
        sync_items(list, c);
        list->setCurrentRow(c.selection);
        if (c.selection < 0)
            list->clearSelection();
    } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
        sync_items(combo, c);
        combo->setCurrentIndex(c.selection);
        // The template's height includes the dropped list.
        place.setHeight(combo->sizeHint().height());
    } else if (auto* label = qobject_cast<QLabel*>(w)) {
        label->setAutoFillBackground(!m_dialog.look().is_transparent(c.id));
        QPixmap image;
        if (c.kind == ControlKind::Bitmap)
            image = m_host.images().find(c.caption);
        if (!image.isNull()) {
            label->setScaledContents(true);
            label->setPixmap(image);
        } else {
            label->setText(text);
        }
    }
    // Read-only edits have the dialog's colour, as on the platform.
    if (qobject_cast<QLineEdit*>(w) || qobject_cast<QPlainTextEdit*>(w)) {
        QPalette palette = QApplication::palette();
        if (c.has(style::read_only))
            palette.setColor(QPalette::Base, palette.color(QPalette::Window));
        w->setPalette(palette);
    }
    w->setGeometry(place);
    w->setVisible(c.visible);
    m_syncing = was_syncing;
}

void DialogWindow::sync_window() {
    if (!m_attached || !m_dialog.has_window())
        return;
    const bool was_syncing = m_syncing;
    m_syncing = true;
    const WindowState& state = m_dialog.window();
    const DialogUnits& units = m_host.units();
    if (m_topLevel) {
        setWindowTitle(to_qt(state.text));
        if (const int icon = m_dialog.look().icon) {
            const QPixmap image = m_host.images().find(std::to_string(icon));
            if (!image.isNull())
                setWindowIcon(QIcon(image));
        }
        sync_size_limits();
        if (units.du_x(width()) != state.rect.Width() ||
            units.du_y(height()) != state.rect.Height())
            resize(units.size(state.rect.Width(), state.rect.Height()));
    } else {
        setGeometry(units.rect(state.rect));
        setEnabled(state.enabled);
    }
    for (std::size_t i = 0; i < m_items.size(); ++i)
        sync_item(i);
    sync_children();
    if (!m_topLevel)
        setVisible(state.visible);
    m_syncing = was_syncing;
    update();
}

void DialogWindow::sync_size_limits() {
    const WindowState& state = m_dialog.window();
    const DialogUnits& units = m_host.units();
    if (!m_dialog.look().sizable) {
        setFixedSize(units.size(state.rect.Width(), state.rect.Height()));
        return;
    }
    SizeLimits limits;
    m_dialog.OnGetMinMaxInfo(limits);
    setMinimumSize(limits.min_cx ? units.x(limits.min_cx) : 0,
                   limits.min_cy ? units.y(limits.min_cy) : 0);
    setMaximumSize(limits.max_cx ? units.x(limits.max_cx) : QWIDGETSIZE_MAX,
                   limits.max_cy ? units.y(limits.max_cy) : QWIDGETSIZE_MAX);
}

void DialogWindow::sync_children() {
    const std::vector<CDialog*>& wanted = m_dialog.child_dialogs();
    // Children the model no longer has go first; their dialogs may be gone.
    for (auto it = m_children.begin(); it != m_children.end();) {
        DialogWindow* child = *it;
        const bool kept =
            child && std::find(wanted.begin(), wanted.end(), &child->m_dialog) != wanted.end();
        if (kept) {
            ++it;
            continue;
        }
        if (child) {
            child->detach();
            child->deleteLater(); // a handler of one of its widgets may be running
        }
        it = m_children.erase(it);
    }
    for (CDialog* dialog : wanted) {
        DialogWindow* child = m_host.window_of(dialog);
        if (!child) {
            child = new DialogWindow(m_host, *dialog, this, false);
            m_children.emplace_back(child);
        }
        child->sync_window();
    }
}

void DialogWindow::detach() {
    if (!m_attached)
        return;
    m_attached = false;
    m_host.remove_window(&m_dialog, this);
    for (const QPointer<DialogWindow>& child : m_children)
        if (child)
            child->detach();
    hide();
}

void DialogWindow::show_modal() {
    setWindowModality(Qt::ApplicationModal);
    // Centred over the window it belongs to, or on the screen.
    // (A dialog opened from its owner's OnInitDialog finds the owner not shown yet.)
    const QWidget* owner = parentWidget() ? parentWidget()->window() : nullptr;
    const QRect over = owner && owner->isVisible()
                           ? owner->frameGeometry()
                           : (screen() ? screen()->availableGeometry() : QRect());
    if (over.isValid())
        move(over.center() - rect().center());
    show();
    raise();
    activateWindow();
}

void DialogWindow::input(std::size_t index, const std::function<void(CDialog&, int id)>& action) {
    if (!m_attached || m_syncing || index >= m_dialog.controls().size())
        return;
    QPointer<DialogWindow> self(this);
    action(m_dialog, m_dialog.controls()[index].id);
    // The widget may have changed on its own where the model said no.
    if (self && m_attached && index < m_dialog.controls().size())
        sync_item(index);
    m_host.after_input();
}

void DialogWindow::press_default_button() {
    // A focused push button takes Enter itself, as on the platform.
    if (auto* focused = qobject_cast<QPushButton*>(QApplication::focusWidget());
        focused && isAncestorOf(focused) && focused->isEnabled() && focused->isVisible()) {
        focused->click();
        return;
    }
    const std::vector<ControlState>& controls = m_dialog.controls();
    for (std::size_t i = 0; i < controls.size(); ++i) {
        if (controls[i].kind != ControlKind::DefaultButton)
            continue;
        if (m_dialog.UserClick(controls[i].id) != InputResult::Done)
            QApplication::beep();
        m_host.after_input();
        return;
    }
    QApplication::beep();
}

bool DialogWindow::eventFilter(QObject* watched, QEvent* event) {
    auto* radio = qobject_cast<QRadioButton*>(watched);
    if (radio && m_attached && event->type() == QEvent::KeyPress &&
        move_in_radio_group(radio, static_cast<QKeyEvent*>(event)->key()))
        return true;
    return QWidget::eventFilter(watched, event);
}

bool DialogWindow::move_in_radio_group(QRadioButton* radio, int key) {
    const int step = key == Qt::Key_Down || key == Qt::Key_Right ? 1
                     : key == Qt::Key_Up || key == Qt::Key_Left  ? -1
                                                                 : 0;
    if (!step)
        return false;
    // Arrows go round the group, past members that cannot take input, and check.
    const std::size_t index = radio->property("korv_index").toULongLong();
    const std::vector<std::size_t> group = m_dialog.radio_group(index);
    const auto at = std::find(group.begin(), group.end(), index);
    if (at == group.end())
        return false;
    const int count = static_cast<int>(group.size());
    for (int i = 1; i < count; ++i) {
        const std::size_t next =
            group[static_cast<std::size_t>(((at - group.begin()) + step * i + count * i) % count)];
        QWidget* target = control_widget(next);
        if (target && target->isEnabled() && target->isVisible()) {
            target->setFocus(Qt::TabFocusReason);
            input(next, [](CDialog& d, int id) { d.UserClick(id); });
            return true;
        }
    }
    return true;
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
    if (!m_topLevel || !m_attached) {
        event->ignore();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        press_default_button();
        return;
    case Qt::Key_Escape:
        m_dialog.UserClose();
        m_host.after_input();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void DialogWindow::closeEvent(QCloseEvent* event) {
    if (!m_topLevel || !m_attached) {
        event->accept();
        return;
    }
    // The close box asks the dialog; the window goes when its run ends.
    event->ignore();
    m_dialog.UserClose();
    m_host.after_input();
}

void DialogWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (!m_topLevel || !m_attached || m_syncing || !m_dialog.look().sizable)
        return;
    const DialogUnits& units = m_host.units();
    const unsigned type = isMinimized()   ? SIZE_MINIMIZED
                          : isMaximized() ? SIZE_MAXIMIZED
                                          : SIZE_RESTORED;
    m_dialog.UserResize(type, units.du_x(width()), units.du_y(height()));
    update();
}

QRect DialogWindow::gripper_rect() const {
    const int extent = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    return {width() - extent, height() - extent, extent, extent};
}

void DialogWindow::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (!m_topLevel || !m_attached || !m_dialog.look().sizable || !m_dialog.look().gripper)
        return;
    QPainter painter(this);
    QStyleOptionSizeGrip option;
    option.initFrom(this);
    option.rect = gripper_rect();
    option.corner = Qt::BottomRightCorner;
    style()->drawControl(QStyle::CE_SizeGrip, &option, &painter, this);
}

void DialogWindow::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const DialogUnits& units = m_host.units();
    if (m_topLevel && m_attached && m_dialog.look().sizable && event->button() == Qt::LeftButton &&
        m_dialog.OnNcHitTest(units.du_x(at.x()), units.du_y(at.y())) == HTBOTTOMRIGHT) {
        m_dragging = true;
        m_dragOffset = QPoint(width(), height()) - at;
        event->accept();
        return;
    }
    QWidget::mousePressEvent(event);
}

void DialogWindow::mouseMoveEvent(QMouseEvent* event) {
    if (m_dragging) {
        const QPoint corner = event->position().toPoint() + m_dragOffset;
        resize(corner.x(), corner.y()); // within the limits the model set
        event->accept();
        return;
    }
    QWidget::mouseMoveEvent(event);
}

void DialogWindow::mouseReleaseEvent(QMouseEvent* event) {
    m_dragging = false;
    QWidget::mouseReleaseEvent(event);
}

} // namespace korv::ui::qt
