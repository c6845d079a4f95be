#pragma once

class QTextDocument;

namespace tutti {

// Gives a page that was read from Markdown its look on the dark ground: headings, room between blocks, and
// lines around the cells of tables.
void style_help_page(QTextDocument& page);

}  // namespace tutti
