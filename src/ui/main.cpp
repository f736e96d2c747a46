#include "ui/desktop_app.h"

int main(int argc, char** argv) {
  return romsteward::ui::RunDesktop(argc, argv);
}
