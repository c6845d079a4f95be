#include "gui/shell/shell_label.h"

#include "gui/kit/theme.h"

namespace tutti {

ShellLabel::ShellLabel(const Culf& colours, QWidget* parent) : QLabel(parent), colours_(colours) {
  setTextFormat(Qt::PlainText);
  setFont(theme::bold_font());
}

void ShellLabel::show_text(const QString& new_text, bool highlighted) {
  const bool styled = !styleSheet().isEmpty() && highlighted == highlighted_;
  if (text() != new_text) setText(new_text);
  if (styled) return;
  highlighted_ = highlighted;
  const QString ink = theme::colour(highlighted ? colours_.highlighted() : colours_.normal()).name();
  const QString ground = highlighted ? QStringLiteral("background: #0d1a22; border: 1px solid #2f6f8f;")
                                     : QStringLiteral("background: #b4c1cf; border: 1px solid #b4c1cf;");
  setStyleSheet(
      QStringLiteral("QLabel { color: %1; %2 border-radius: 3px; padding: 1px 10px; }").arg(ink, ground));
}

}  // namespace tutti
