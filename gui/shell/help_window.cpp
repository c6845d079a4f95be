#include "gui/shell/help_window.h"

#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <QTextBrowser>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>

#include "gui/kit/svg_icon.h"
#include "gui/kit/theme.h"
#include "gui/shell/help_page.h"

namespace tutti {

namespace {

const char* const start_topic = "index";
constexpr int text_pixels = 14;
constexpr int least_zoom = -4;
constexpr int most_zoom = 14;
constexpr int contents_width = 190;
constexpr int contents_row = 26;
constexpr int find_width = 220;

QString file_of(const QString& topic) {
  return QStringLiteral(":/help/%1.md").arg(topic);
}

QUrl address_of(const QString& topic) {
  return QUrl{QStringLiteral("qrc") + file_of(topic)};
}

QString topic_of(const QUrl& address) {
  return address.fileName().section(QLatin1Char{'.'}, 0, 0);
}

QString read_page(const QString& topic) {
  QFile file{file_of(topic)};
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString{};
}

// The page's first line without the sign of a heading.
QString title_of(const QString& topic) {
  return read_page(topic).section(QLatin1Char{'\n'}, 0, 0).remove(QLatin1Char{'#'}).trimmed();
}

// In the order of the links on the contents page, which comes first.
QStringList topics_in_order() {
  QStringList topics{QString::fromLatin1(start_topic)};
  static const QRegularExpression link{QStringLiteral("\\]\\(([\\w-]+)\\.md\\)")};
  for (auto links = link.globalMatch(read_page(topics.front())); links.hasNext();)
    topics += links.next().captured(1);
  for (const QString& file : QDir{QStringLiteral(":/help")}.entryList())
    topics += file.section(QLatin1Char{'.'}, 0, 0);
  topics.removeDuplicates();
  return topics;
}

QPushButton* make_button(const QString& text, const char* name, const QString& tip) {
  auto* button = new QPushButton{text};
  button->setObjectName(QLatin1String{name});
  button->setToolTip(tip);
  button->setEnabled(false);
  return button;
}

}  // namespace

HelpWindow::HelpWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), contents_(new QListWidget), page_(new QTextBrowser) {
  setWindowTitle(QStringLiteral("Help"));
  resize(900, 640);
  contents_->setObjectName(QStringLiteral("help_contents"));
  contents_->setFixedWidth(contents_width);
  contents_->setFrameShape(QFrame::NoFrame);
  page_->setObjectName(QStringLiteral("help_page"));
  page_->setFrameShape(QFrame::NoFrame);
  page_->setOpenLinks(true);
  fill_contents();

  auto* right = new QVBoxLayout;
  right->setSpacing(0);
  right->addWidget(page_, 1);
  right->addWidget(make_find_bar());
  auto* body = new QHBoxLayout;
  body->setSpacing(1);
  body->addWidget(contents_);
  body->addLayout(right, 1);
  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(0);
  all->addWidget(make_bar());
  all->addLayout(body, 1);

  connect(page_, &QTextBrowser::sourceChanged, this,
          [this](const QUrl& page) { page_shown(topic_of(page)); });
  connect(contents_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    if (item == nullptr) return;
    const QString topic = item->data(Qt::UserRole).toString();
    if (topic != topic_) page_->setSource(address_of(topic));
  });
  add_keys();
  zoom(0);
}

QWidget* HelpWindow::make_bar() {
  auto* bar = new QWidget;
  auto* row = new QHBoxLayout{bar};
  row->setContentsMargins(10, 8, 10, 8);
  row->setSpacing(8);
  auto* back = make_button(QStringLiteral("Back"), "help_back", QStringLiteral("Alt+Left"));
  auto* forward = make_button(QStringLiteral("Forward"), "help_forward", QStringLiteral("Alt+Right"));
  connect(back, &QPushButton::clicked, page_, &QTextBrowser::backward);
  connect(forward, &QPushButton::clicked, page_, &QTextBrowser::forward);
  connect(page_, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
  connect(page_, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
  row->addWidget(back);
  row->addWidget(forward);
  row->addStretch();
  auto* find = make_button(QStringLiteral("Find in page"), "help_find", QStringLiteral("Ctrl+F"));
  find->setEnabled(true);
  connect(find, &QPushButton::clicked, this, [this] { start_find(); });
  row->addWidget(find);
  return bar;
}

QWidget* HelpWindow::make_find_bar() {
  find_bar_ = new QWidget;
  find_bar_->hide();
  auto* row = new QHBoxLayout{find_bar_};
  row->setContentsMargins(10, 6, 10, 6);
  row->setSpacing(8);
  find_ = new QLineEdit;
  find_->setObjectName(QStringLiteral("help_find_text"));
  find_->setPlaceholderText(QStringLiteral("Find in page"));
  find_->setFixedWidth(find_width);
  not_found_ = new QLabel{QStringLiteral("Not on this page")};
  not_found_->setProperty("warn", true);
  not_found_->hide();
  row->addWidget(find_);
  row->addWidget(not_found_);
  row->addStretch();
  connect(find_, &QLineEdit::textEdited, this, [this] {
    // The match that is shown already counts while more of it is typed.
    QTextCursor cursor = page_->textCursor();
    cursor.setPosition(cursor.selectionStart());
    page_->setTextCursor(cursor);
    find(false);
  });
  return find_bar_;
}

void HelpWindow::fill_contents() {
  for (const QString& topic : topics_in_order()) {
    auto* item = new QListWidgetItem{topic == QLatin1String{start_topic} ? QStringLiteral("Contents")
                                                                         : title_of(topic)};
    item->setData(Qt::UserRole, topic);
    item->setSizeHint({contents_width, contents_row});
    contents_->addItem(item);
  }
}

void HelpWindow::add_keys() {
  const auto key = [this](QWidget* where, const QKeySequence& keys, Qt::ShortcutContext context,
                          std::function<void()> run) {
    auto* shortcut = new QShortcut{keys, where};
    shortcut->setContext(context);
    connect(shortcut, &QShortcut::activated, this, std::move(run));
  };
  key(this, Qt::ALT | Qt::Key_Left, Qt::WindowShortcut, [this] { page_->backward(); });
  key(this, Qt::ALT | Qt::Key_Right, Qt::WindowShortcut, [this] { page_->forward(); });
  key(this, Qt::CTRL | Qt::Key_F, Qt::WindowShortcut, [this] { start_find(); });
  // The plus shares its key with "=" on many keyboards.
  key(this, Qt::CTRL | Qt::Key_Plus, Qt::WindowShortcut, [this] { zoom(1); });
  key(this, Qt::CTRL | Qt::Key_Equal, Qt::WindowShortcut, [this] { zoom(1); });
  key(this, Qt::CTRL | Qt::Key_Minus, Qt::WindowShortcut, [this] { zoom(-1); });
  key(this, Qt::CTRL | Qt::Key_0, Qt::WindowShortcut, [this] { zoom(-zoom_); });
  key(this, Qt::Key_Escape, Qt::WindowShortcut, [this] {
    if (find_bar_->isVisible()) return end_find();
    close();
  });
  key(find_, Qt::Key_Return, Qt::WidgetShortcut, [this] { find(false); });
  key(find_, Qt::Key_Enter, Qt::WidgetShortcut, [this] { find(false); });
  key(find_, Qt::SHIFT | Qt::Key_Return, Qt::WidgetShortcut, [this] { find(true); });
}

void HelpWindow::open(const std::string& topic) {
  const QString wanted = QString::fromStdString(topic);
  const bool known = QFile::exists(file_of(wanted));
  page_->setSource(address_of(known ? wanted : QString::fromLatin1(start_topic)));
  show();
  raise();
  activateWindow();
  page_->setFocus();
}

void HelpWindow::page_shown(const QString& topic) {
  topic_ = topic;
  style_help_page(*page_->document());
  setWindowTitle(QStringLiteral("Help - %1").arg(title_of(topic)));
  for (int place = 0; place < contents_->count(); ++place) {
    if (contents_->item(place)->data(Qt::UserRole).toString() == topic) contents_->setCurrentRow(place);
  }
  not_found_->hide();
}

void HelpWindow::zoom(int step) {
  zoom_ = std::clamp(zoom_ + step, least_zoom, most_zoom);
  QFont font = theme::font();
  font.setPixelSize(text_pixels + zoom_);
  page_->setFont(font);
}

void HelpWindow::start_find() {
  find_bar_->show();
  find_->setFocus(Qt::ShortcutFocusReason);
  find_->selectAll();
}

void HelpWindow::end_find() {
  find_bar_->hide();
  page_->setFocus();
}

// Goes on at the other end of the page.
void HelpWindow::find(bool backward) {
  const QString text = find_->text();
  const QTextDocument::FindFlags way = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags{};
  bool found = text.isEmpty() || page_->find(text, way);
  if (!found) {
    const QTextCursor was = page_->textCursor();
    page_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    found = page_->find(text, way);
    if (!found) page_->setTextCursor(was);
  }
  not_found_->setVisible(!found);
}

}  // namespace tutti
