#include "gui/kit/theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QStyleFactory>

// Resources of a static library come in only when somebody asks for them, outside any namespace.
static void register_resources() {
  Q_INIT_RESOURCE(resources);
}

namespace tutti::theme {

namespace {

constexpr int font_pixels = 12;

QFont make_font(QFont::Weight weight) {
  QFont font{QStringLiteral("Open Sans")};
  font.setPixelSize(font_pixels);
  font.setWeight(weight);
  font.setHintingPreference(QFont::PreferVerticalHinting);
  return font;
}

QPalette make_palette() {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor{window});
  palette.setColor(QPalette::WindowText, QColor{window_text});
  palette.setColor(QPalette::Base, QColor{base});
  palette.setColor(QPalette::AlternateBase, QColor{alternate});
  palette.setColor(QPalette::Text, QColor{text});
  palette.setColor(QPalette::PlaceholderText, QColor{muted});
  palette.setColor(QPalette::Button, QColor{button});
  palette.setColor(QPalette::ButtonText, QColor{window_text});
  palette.setColor(QPalette::BrightText, QColor{amber});
  palette.setColor(QPalette::Highlight, QColor{primary});
  palette.setColor(QPalette::HighlightedText, QColor{text});
  palette.setColor(QPalette::ToolTipBase, QColor{raised});
  palette.setColor(QPalette::ToolTipText, QColor{text});
  palette.setColor(QPalette::Link, QColor{accent});
  palette.setColor(QPalette::LinkVisited, QColor{accent});
  palette.setColor(QPalette::Light, QColor{line});
  palette.setColor(QPalette::Midlight, QColor{button});
  palette.setColor(QPalette::Mid, QColor{panel});
  palette.setColor(QPalette::Dark, QColor{dark_line});
  palette.setColor(QPalette::Shadow, QColor{dark_line});
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
    palette.setColor(QPalette::Disabled, role, QColor{disabled});
  }
  return palette;
}

// Frames and bars only: cells are painted by their delegate, so that their colours survive a selection.
const char* const sheet = R"(
QMainWindow::separator { background: #0b0e12; width: 4px; height: 4px; }
QMainWindow::separator:hover { background: #2f6f8f; }
QMenuBar { background: #1a2028; padding: 2px 4px; }
QMenuBar::item { padding: 5px 10px; background: transparent; border-radius: 3px; }
QMenuBar::item:selected, QMenuBar::item:pressed { background: #27303b; }
QMenu { background: #1d242d; border: 1px solid #323b47; padding: 4px 0; }
QMenu::item { padding: 5px 28px 5px 28px; }
QMenu::item:selected { background: #1f6f8f; color: #eef1f5; }
QMenu::item:disabled { color: #808b99; background: transparent; }
QMenu::separator { height: 1px; background: #323b47; margin: 4px 8px; }
QMenu::icon { padding-left: 8px; }
QToolBar { background: #1a2028; border: none; border-bottom: 1px solid #0b0e12; padding: 4px 6px; spacing: 4px; }
QToolBar::separator { width: 1px; background: #323b47; margin: 4px 6px; }
QToolButton { background: transparent; border: 1px solid transparent; border-radius: 3px; padding: 4px 8px; }
QToolButton:hover { background: #27303b; }
QToolButton:pressed, QToolButton:checked { background: #1f3a48; border-color: #2f6f8f; }
QToolButton:disabled { color: #808b99; }
QToolButton:focus { border-color: #4db5d2; }
QStatusBar { background: #1a2028; border-top: 1px solid #0b0e12; }
QStatusBar::item { border: none; }
QDockWidget { color: #e6eaf0; font-weight: 600; }
QDockWidget::title { background: #1a2028; padding: 7px 10px; border-bottom: 1px solid #0b0e12; }
QDockWidget { titlebar-close-icon: url(:/icons/dock-close.svg); titlebar-normal-icon: url(:/icons/dock-float.svg); }
QDockWidget::close-button, QDockWidget::float-button { border: none; background: transparent; padding: 2px; icon-size: 14px; }
QDockWidget::close-button:hover, QDockWidget::float-button:hover { background: #27303b; border-radius: 3px; }
QDockWidget > QWidget { background: #12161c; }
QTabBar { background: #12161c; }
QTabBar::tab { background: #1a2028; color: #93a0ae; padding: 6px 14px; border: none; border-right: 1px solid #0b0e12;
  border-bottom: 2px solid #1a2028; }
QTabBar::tab:selected { background: #1d242d; color: #eef1f5; border-bottom-color: #4db5d2; }
QTabBar::tab:hover { color: #eef1f5; }
QHeaderView { background: #1a2028; }
QHeaderView::section { background: #1a2028; color: #93a0ae; border: none; border-right: 1px solid #0b0e12;
  border-bottom: 1px solid #0b0e12; padding: 0 7px 0 8px; }
QHeaderView::section:hover { color: #eef1f5; }
QTableView { border: none; }
QListWidget { background: #12161c; border: none; outline: none; }
QListWidget::item { padding: 5px 10px; border-left: 3px solid transparent; }
QListWidget::item:selected { background: #02133a; color: #eef1f5; border-left-color: #4db5d2; }
QListWidget::item:hover { color: #4db5d2; }
QListWidget#found_symbols { background: #1d242d; border: 1px solid #323b47; }
QLineEdit, QComboBox, QPlainTextEdit { background: #0c1015; border: 1px solid #323b47; border-radius: 3px;
  padding: 3px 7px; min-height: 18px; selection-background-color: #1f6f8f; }
QLineEdit:focus, QComboBox:focus { border-color: #4db5d2; }
QLineEdit:disabled, QComboBox:disabled { color: #808b99; background: #11161c; border-color: #27303b; }
QLineEdit[readOnly="true"] { background: #11161c; }
QLineEdit[search="not_taken"], QLineEdit[search="not_taken"]:focus { color: #e0a04a; border-color: #e0a04a; }
QLineEdit[search="nothing"], QLineEdit[search="nothing"]:focus { color: #e58b8b; border-color: #e58b8b; }
QLineEdit[breaks="true"], QLineEdit[breaks="true"]:focus { border-color: #e0a04a; }
QComboBox::drop-down { border: none; border-left: 1px solid #323b47; width: 20px; }
QComboBox::down-arrow { image: url(:/icons/chevron-down.svg); width: 12px; height: 12px; }
QComboBox QAbstractItemView { background: #1d242d; border: 1px solid #323b47; outline: none;
  selection-background-color: #1f6f8f; }
QPushButton { background: #27303b; border: 1px solid #3a4653; border-radius: 3px; padding: 5px 16px; min-height: 18px; }
QPushButton:hover { background: #303b48; }
QPushButton:pressed { background: #1d242d; }
QPushButton:focus { border-color: #4db5d2; }
QPushButton:disabled { color: #808b99; background: #1a2028; border-color: #27303b; }
QPushButton[role="primary"], QPushButton:default { background: #1f6f8f; border-color: #2f8fb5; color: #ffffff; }
QPushButton[role="primary"]:hover, QPushButton:default:hover { background: #22789a; }
QPushButton[role="buy"] { background: #1d7a3b; border-color: #2f9a50; color: #ffffff; font-weight: 600; }
QPushButton[role="buy"]:hover { background: #1c7338; }
QPushButton[role="sell"] { background: #7c1f24; border-color: #a32c33; color: #ffffff; font-weight: 600; }
QPushButton[role="sell"]:hover { background: #93262c; }
QPushButton[role="buy"]:focus, QPushButton[role="sell"]:focus, QPushButton[role="primary"]:focus,
QPushButton:default:focus { border-color: #ffffff; }
QPushButton[role="primary"]:disabled, QPushButton[role="buy"]:disabled, QPushButton[role="sell"]:disabled,
QPushButton:default:disabled { color: #808b99; background: #1a2028; border-color: #27303b; }
QCheckBox { spacing: 7px; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid #4a5765; border-radius: 3px; background: #0c1015; }
QCheckBox::indicator:checked { background: #1f6f8f; border-color: #4db5d2; image: url(:/icons/check.svg); }
QCheckBox::indicator:focus { border-color: #4db5d2; }
QGroupBox { border: 1px solid #323b47; border-radius: 4px; margin-top: 10px; padding: 8px; }
QGroupBox::title { subcontrol-origin: margin; left: 10px; padding: 0 4px; color: #93a0ae; }
QProgressBar { background: #0c1015; border: 1px solid #323b47; border-radius: 3px; text-align: center; max-height: 12px; }
QProgressBar[thin="true"] { border: none; border-radius: 2px; min-height: 4px; max-height: 4px; }
QProgressBar::chunk { background: #1f6f8f; border-radius: 2px; }
QScrollBar:vertical { background: #0c1015; width: 11px; margin: 0; }
QScrollBar:horizontal { background: #0c1015; height: 11px; margin: 0; }
QScrollBar::handle { background: #323b47; border-radius: 4px; margin: 2px; }
QScrollBar::handle:vertical { min-height: 28px; }
QScrollBar::handle:horizontal { min-width: 28px; }
QScrollBar::handle:hover { background: #45525f; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }
QToolTip { background: #1d242d; color: #eef1f5; border: 1px solid #323b47; padding: 3px 6px; }
QLabel[muted="true"] { color: #93a0ae; }
QLabel[warn="true"] { color: #e0a04a; }
QTextBrowser { background: #0c1015; border: 1px solid #323b47; padding: 10px; }
)";

}  // namespace

void apply(QApplication& application) {
  register_resources();
  QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/OpenSans-Regular.ttf"));
  QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/OpenSans-Semibold.ttf"));
  application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  application.setPalette(make_palette());
  application.setFont(font());
  application.setStyleSheet(QString::fromLatin1(sheet));
}

WithoutSheet::WithoutSheet(QApplication& application)
    : application_(application), sheet_(application.styleSheet()) {
  application_.setStyleSheet({});
}

WithoutSheet::~WithoutSheet() {
  application_.setStyleSheet(sheet_);
}

const QFont& font() {
  static const QFont made = make_font(QFont::Normal);
  return made;
}

const QFont& bold_font() {
  static const QFont made = make_font(QFont::DemiBold);
  return made;
}

}  // namespace tutti::theme
