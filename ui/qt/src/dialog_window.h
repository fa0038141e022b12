// The window of one dialog: a top-level window for a modal dialog, a child
// widget placed in its parent's window for a child dialog (a wizard page).
// Holds one widget per control of the model, in the order of the template.
#pragma once

#include "ui_dialog.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

class QRadioButton;

namespace korv::ui::qt {

class QtHost;

class DialogWindow : public QWidget {
public:
    DialogWindow(QtHost& host, CDialog& dialog, QWidget* parent, bool top_level);
    ~DialogWindow() override;

    CDialog& dialog() const { return m_dialog; }
    // The widget of control `index` of dialog().controls().
    QWidget* control_widget(std::size_t index) const;

    void sync_all();
    // The controls with this id (IDC_STATIC names all those without one).
    void sync_controls(int id);
    // Caption, icon, size, visibility, child dialogs, tips.
    void sync_window();
    void show_modal();
    // Cut loose from the model: the dialog is gone or going. Hides the window.
    void detach();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Item {
        QWidget* widget = nullptr;
        bool complained = false; // about a missing image
    };

    void build();
    QWidget* make_widget(const ControlState& control);
    void sync_item(std::size_t index);
    void sync_children();
    void sync_size_limits();
    void press_default_button();
    // An arrow key on a radio button: true if it moved within its group.
    bool move_in_radio_group(QRadioButton* radio, int key);
    // Runs a user action on the model, unless this window was cut loose, then
    // lets the host end runs and refreshes what the action touched.
    void input(std::size_t index, const std::function<void(CDialog&, int id)>& action);
    QRect gripper_rect() const;

    QtHost& m_host;
    CDialog& m_dialog;
    bool m_topLevel;
    bool m_attached = true;
    bool m_syncing = false;
    bool m_dragging = false;
    QPoint m_dragOffset;
    std::vector<Item> m_items;
    std::vector<QPointer<DialogWindow>> m_children;
};

} // namespace korv::ui::qt
