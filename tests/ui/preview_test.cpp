// The preview window follows the selection and keeps its place; the toolbar reaches the
// menu items of its commands.
#include <QAction>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include "core/settings/app_settings.h"
#include "ui/main_window.h"
#include "ui/preview/preview_window.h"
#include "ui/qt_text.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

namespace {

bool Colourful(const QImage& image) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (const QColor pixel = image.pixelColor(x, y);
          pixel.alpha() > 128 && pixel.hsvSaturation() > 120)
        return true;
  return false;
}

}  // namespace

class PreviewTest : public QObject {
  Q_OBJECT
private:
  struct Fixture : DemoWindow<> {
    PreviewWindow* preview = window.findChild<PreviewWindow*>("frmPreview");
    QString defaultPicture = sandbox.Path("romsteward.jpg");

    Fixture() {
      QImage picture(40, 30, QImage::Format_RGB32);
      picture.fill(Qt::darkBlue);
      picture.save(defaultPicture, "JPG");
      preview->SetProgramDirectory(sandbox.Path(""));
      window.show();
      window.Start();
    }
    void Trigger(const char* name) {
      QAction* action = window.findChild<QAction*>(name);
      QVERIFY2(action, name);
      action->trigger();
    }
    std::string Setting(const char* key) {
      return sandbox.Settings().GetSetting(kSectionSettings, key);
    }
  };

private slots:
  void ThePictureFollowsTheSelection() {
    Fixture f;
    QVERIFY(f.preview);
    QVERIFY(f.Select("Star Courier (W).bin"));
    QVERIFY(!f.preview->isVisible());  // off until "&Activated" is checked
    f.Trigger("mnu_preview");
    QCOMPARE(f.Setting("showprev"), std::string("True"));
    QCOMPARE(f.preview->ShownPath(), f.defaultPicture);

    const QString own = f.sandbox.Path("cover.png");
    QImage(20, 60, QImage::Format_RGB32).save(own, "PNG");
    (void)f.sandbox.Settings().SaveSetting(kSectionCartridge, "Star Courier (W).bin.pic",
                                           FromQt(own));
    f.window.Render();
    QCOMPARE(f.preview->ShownPath(), own);

    f.window.Model().ChooseFilter(ListFilter::AllFiles);
    QVERIFY(f.Select("notes.txt"));  // no image, no picture
    QVERIFY(!f.preview->isVisible());

    // A file that is no picture: told once, nothing shown.
    QFile broken(f.sandbox.Path("broken.jpg"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("not a picture");
    broken.close();
    (void)f.sandbox.Settings().SaveSetting(kSectionCartridge, "Coral Archive (B).bin.pic",
                                           FromQt(broken.fileName()));
    QVERIFY(f.Select("Coral Archive (B).bin"));
    f.window.Render();
    QCOMPARE(f.host.shown,
             std::vector<std::string>{"Preview picture is in a invalid file format!"});
    QVERIFY(!f.preview->isVisible());

    // Closing the preview window switches the preview off.
    QVERIFY(f.Select("Star Courier (W).bin"));
    QVERIFY(f.preview->isVisible());
    f.preview->close();
    QVERIFY(!f.window.findChild<QAction*>("mnu_preview")->isChecked());
    QCOMPARE(f.Setting("showprev"), std::string("False"));
  }

  void ThePreviewKeepsItsPlace() {
    Fixture f;
    (void)f.sandbox.Settings().SaveSetting(kSectionSettings, "prevX", "40");
    (void)f.sandbox.Settings().SaveSetting(kSectionSettings, "prevY", "50");
    QVERIFY(f.Select("Star Courier (W).bin"));
    f.Trigger("mnu_preview");
    QCOMPARE(f.preview->pos(), QPoint(40, 50));
    f.preview->move(120, 90);
    f.window.close();  // stores the place without switching the preview off
    QCOMPARE(f.Setting("prevX"), std::string("120"));
    QCOMPARE(f.Setting("prevY"), std::string("90"));
    QCOMPARE(f.Setting("showprev"), std::string("True"));
  }

  // Beside the main window where there is room (its left when its right is the screen's
  // edge), and a stored place partly off the screen is pulled back onto it.
  void ThePreviewOpensWholeOnTheScreen() {
    {
      Fixture f;
      const QRect screen = f.window.screen()->availableGeometry();
      f.window.resize(400, 300);
      f.window.move(screen.right() - 420, screen.top() + 10);
      QVERIFY(f.Select("Star Courier (W).bin"));
      f.Trigger("mnu_preview");
      QVERIFY(f.preview->isVisible());
      QVERIFY(screen.contains(f.preview->frameGeometry()));
      QVERIFY(!f.preview->frameGeometry().intersects(f.window.frameGeometry()));
    }
    Fixture f;
    const QRect screen = f.window.screen()->availableGeometry();
    (void)f.sandbox.Settings().SaveSetting(kSectionSettings, "prevX",
                                           std::to_string(screen.right() - 50));
    (void)f.sandbox.Settings().SaveSetting(kSectionSettings, "prevY", "20");
    QVERIFY(f.Select("Star Courier (W).bin"));
    f.Trigger("mnu_preview");
    QVERIFY(screen.contains(f.preview->frameGeometry()));
    QCOMPARE(f.preview->y(), 20);
  }

  void ToolbarButtonsTriggerTheirMenuItems() {
    Fixture f;
    QVERIFY(f.Select("Star Courier (W).bin"));
    QSignalSpy crc(f.window.findChild<QAction*>("mnu_crc"), &QAction::triggered);
    QSignalSpy picture(f.window.findChild<QAction*>("mnu_picprev"), &QAction::triggered);
    f.Trigger("btncrc");
    f.Trigger("BtnImagem");
    QCOMPARE(crc.count(), 1);
    QCOMPARE(picture.count(), 1);
    // A button whose menu item the window lacks does nothing.
    if (!f.window.findChild<QAction*>("mnu_prop")) f.Trigger("btnProp");
    // Buttons follow the model: no selection, no file buttons.
    f.window.Model().EnableFileMenus(false);
    f.window.Render();
    QVERIFY(!f.window.findChild<QAction*>("btnDeleta")->isEnabled());

    // An enabled button must not look switched off: the delete icon has colour, its
    // disabled form has none.
    const QIcon trash = f.window.findChild<QAction*>("btnDeleta")->icon();
    QVERIFY(Colourful(trash.pixmap(32).toImage()));
    QVERIFY(!Colourful(trash.pixmap(32, QIcon::Disabled).toImage()));
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::PreviewTest)
#include "preview_test.moc"
