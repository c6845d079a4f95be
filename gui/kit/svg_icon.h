#pragma once

#include <QIcon>
#include <QString>

namespace tutti {

// One of the compiled-in outline icons, drawn sharp at any size and scale in the colour of the text, and in
// that of disabled text while what it stands for is not available. `tint` is another colour for the first.
QIcon svg_icon(const QString& name);
QIcon svg_icon(const QString& name, QRgb tint);

}  // namespace tutti
