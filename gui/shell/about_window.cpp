#include "gui/shell/about_window.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/version.h"
#include "gui/kit/svg_icon.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

constexpr int icon_size = 48;
constexpr int title_pixels = 20;
constexpr QSize logo_box{320, 96};
constexpr int text_width = 320;

QLabel* make_text(const QString& text) {
  auto* label = new QLabel{text};
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setMaximumWidth(text_width);
  return label;
}

QLabel* make_muted(const QString& text) {
  QLabel* label = make_text(text);
  label->setProperty("muted", true);
  return label;
}

// Never larger than its place, whatever the file holds; null when it is no picture.
QPixmap read_logo(const std::filesystem::path& file, double scale) {
  QImageReader reader{QString::fromStdString(file.string())};
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  const QSize size = file.empty() ? QSize{} : reader.size();
  if (!size.isValid() || size.isEmpty()) return {};
  const QSize place = logo_box * scale;
  const bool large = size.width() > place.width() || size.height() > place.height();
  if (large) reader.setScaledSize(size.scaled(place, Qt::KeepAspectRatio).expandedTo({1, 1}));
  QPixmap logo = QPixmap::fromImageReader(&reader);
  logo.setDevicePixelRatio(scale);
  return logo;
}

QVBoxLayout* make_program() {
  auto* column = new QVBoxLayout;
  column->setSpacing(2);
  QLabel* name = make_text(QStringLiteral("Tutti"));
  QFont font = theme::bold_font();
  font.setPixelSize(title_pixels);
  name->setFont(font);
  column->addWidget(name);
  QLabel* version = make_text(QString::fromStdString(std::string{program_version()}));
  version->setObjectName(QStringLiteral("version"));
  column->addWidget(version);
  column->addWidget(make_muted(QStringLiteral("One order for many accounts")));
  return column;
}

void add_broker(QVBoxLayout& column, const BrokerCard& card, double scale) {
  if (const QPixmap logo = read_logo(card.logo, scale); !logo.isNull()) {
    auto* picture = new QLabel;
    picture->setObjectName(QStringLiteral("logo"));
    picture->setPixmap(logo);
    column.addWidget(picture);
  }
  if (!card.name.empty()) {
    QLabel* name = make_text(QString::fromStdString(card.name));
    name->setObjectName(QStringLiteral("broker"));
    name->setFont(theme::bold_font());
    column.addWidget(name);
  }
  for (const std::string* line : {&card.web, &card.email}) {
    if (!line->empty()) column.addWidget(make_text(QString::fromStdString(*line)));
  }
}

}  // namespace

AboutWindow::AboutWindow(const BrokerCard& card, QWidget* parent) : QDialog(parent) {
  setWindowTitle(QStringLiteral("About Tutti"));
  auto* icon = new QLabel;
  icon->setPixmap(svg_icon(QStringLiteral("tutti")).pixmap(QSize{icon_size, icon_size}, devicePixelRatioF()));

  auto* top = new QHBoxLayout;
  top->setSpacing(16);
  top->addWidget(icon, 0, Qt::AlignTop);
  top->addLayout(make_program(), 1);

  auto* broker = new QVBoxLayout;
  broker->setSpacing(6);
  add_broker(*broker, card, devicePixelRatioF());

  auto* close = new QPushButton{QStringLiteral("Close")};
  close->setMinimumWidth(88);
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);

  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(20, 20, 20, 12);
  all->setSpacing(16);
  all->addLayout(top);
  if (broker->count() > 0) {
    auto* line = new QFrame;
    line->setFixedHeight(1);
    line->setStyleSheet(QStringLiteral("background: %1;").arg(QColor{theme::line}.name()));
    all->addWidget(line);
    all->addLayout(broker);
  } else {
    delete broker;
  }
  QLabel* licences = make_muted(QStringLiteral("Open Sans, Lucide icons: see LICENSES.md"));
  licences->setMinimumWidth(text_width);
  all->addWidget(licences);
  all->addWidget(close, 0, Qt::AlignRight);
  all->setSizeConstraint(QLayout::SetFixedSize);
  close->setFocus();
}

}  // namespace tutti
