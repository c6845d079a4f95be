#include "gui/shell/help_page.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include "gui/kit/theme.h"

namespace tutti {

namespace {

constexpr double room_above_heading = 18.0;
constexpr double room_below = 8.0;

void style_table(QTextTable& table) {
  QTextTableFormat format = table.format();
  format.setBorder(1.0);
  format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
  format.setBorderBrush(QColor{theme::line});
  format.setBorderCollapse(true);
  format.setCellPadding(5.0);
  format.setCellSpacing(0.0);
  format.setTopMargin(4.0);
  format.setBottomMargin(room_below);
  table.setFormat(format);
  for (int column = 0; column < table.columns(); ++column) {
    QTextTableCell cell = table.cellAt(0, column);
    QTextCharFormat look = cell.format();
    look.setBackground(QColor{theme::panel});
    cell.setFormat(look);
    QTextCursor text = cell.firstCursorPosition();
    text.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    QTextCharFormat muted;
    muted.setForeground(QColor{theme::muted});
    muted.setFontWeight(QFont::DemiBold);
    text.mergeCharFormat(muted);
  }
}

void style_block(const QTextBlock& block) {
  QTextCursor cursor{block};
  QTextBlockFormat format = block.blockFormat();
  if (cursor.currentTable() != nullptr) {
    format.setTopMargin(0.0);
    format.setBottomMargin(0.0);
  } else if (format.headingLevel() > 0) {
    format.setTopMargin(format.headingLevel() == 1 ? 0.0 : room_above_heading);
    format.setBottomMargin(room_below);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    QTextCharFormat heading;
    heading.setForeground(QColor{theme::text});
    heading.setFontWeight(QFont::DemiBold);
    cursor.mergeCharFormat(heading);
    cursor.movePosition(QTextCursor::StartOfBlock);
  } else {
    format.setTopMargin(0.0);
    format.setBottomMargin(block.textList() != nullptr ? room_below / 2.0 : room_below);
  }
  cursor.setBlockFormat(format);
}

}  // namespace

void style_help_page(QTextDocument& page) {
  page.setUndoRedoEnabled(false);
  for (QTextBlock block = page.begin(); block.isValid(); block = block.next())
    style_block(block);
  for (QTextFrame* frame : page.rootFrame()->childFrames()) {
    if (auto* table = qobject_cast<QTextTable*>(frame)) style_table(*table);
  }
}

}  // namespace tutti
