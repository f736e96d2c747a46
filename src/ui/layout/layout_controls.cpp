#include "ui/layout/layout_controls.h"

#include <QLayout>
#include <QSlider>
#include <QStackedWidget>
#include <QWidget>

#include "ui/emulator_tabs.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

// Holds a detached control's place in its layout: the sizes the control asked for, nothing
// drawn.
class LayoutBlank : public QWidget {
public:
  explicit LayoutBlank(const QWidget& control)
      : m_hint(control.sizeHint()), m_minimum(control.minimumSizeHint()) {
    setSizePolicy(control.sizePolicy());
    setObjectName(control.objectName() + "_place");
  }
  QSize sizeHint() const override { return m_hint; }
  QSize minimumSizeHint() const override { return m_minimum; }

private:
  QSize m_hint;
  QSize m_minimum;
};

void LayOut(QWidget* widget) {
  if (QLayout* layout = widget->layout()) layout->setGeometry(widget->rect());
}

}  // namespace

QWidget* LayoutWidget(const MainWindow& window, std::string_view name) {
  if (name == "SlidK" || name == "SlidGen") {
    QSlider* slider = name == "SlidK" ? window.Tabs()->KSlider() : window.Tabs()->GenSlider();
    return slider ? slider->parentWidget() : nullptr;
  }
  return window.findChild<QWidget*>(ToQt(name));
}

void DetachFromLayout(QWidget* control) {
  QWidget* container = control->parentWidget();
  if (!container || !container->layout()) return;
  const QRect place = control->geometry();
  auto* blank = new LayoutBlank(*control);
  QLayoutItem* item = container->layout()->replaceWidget(control, blank);
  if (!item) {  // already free
    delete blank;
    return;
  }
  delete item;
  control->setGeometry(place);
  control->raise();
}

void SettleHiddenPages(QWidget* root) {
  for (QStackedWidget* stack : root->findChildren<QStackedWidget*>()) {
    const QWidget* current = stack->currentWidget();
    if (!current) continue;
    for (int i = 0; i < stack->count(); ++i) {
      QWidget* page = stack->widget(i);
      if (page == current) continue;
      page->setGeometry(current->geometry());
      // Parents come before their children in findChildren, so each row is laid out in the
      // space its page has just given it.
      LayOut(page);
      for (QWidget* child : page->findChildren<QWidget*>())
        LayOut(child);
    }
  }
}

}  // namespace romsteward::ui
