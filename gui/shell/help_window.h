#pragma once

#include <QString>
#include <QWidget>
#include <string>

class QLabel;
class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace tutti {

// Help: the compiled-in pages with a list of contents, a way back and forward, find in the page, and zoom.
// A window of its own beside the main one.
class HelpWindow final : public QWidget {
 public:
  explicit HelpWindow(QWidget* parent = nullptr);

  // Shows a topic's page; the contents page when there is none.
  void open(const std::string& topic);

 private:
  QWidget* make_bar();
  QWidget* make_find_bar();
  void fill_contents();
  void add_keys();
  void page_shown(const QString& topic);
  void zoom(int step);
  void start_find();
  void end_find();
  void find(bool backward);

  QListWidget* contents_;
  QTextBrowser* page_;
  QWidget* find_bar_ = nullptr;
  QLineEdit* find_ = nullptr;
  QLabel* not_found_ = nullptr;
  QString topic_;  // of the page on show
  int zoom_ = 0;   // in steps of one pixel of the text's size
};

}  // namespace tutti
