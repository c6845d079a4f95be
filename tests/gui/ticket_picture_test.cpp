// The picture of a ticket's fills.

#include <QHelpEvent>
#include <QToolTip>

#include "core/numbers.h"
#include "gui/windows/ticket_board_window.h"
#include "gui/windows/ticket_picture_view.h"
#include "tests/gui/gui_rig.h"
#include "tests/support/stored_terminal.h"

namespace tutti::testing {
namespace {

// The second account is filled two seconds after the first, the third two later.
constexpr auto one_after_another =
    "sample_accounts = 3\n"
    "[[fault]]\nkind = \"delay\"\naccount = 500101\non = [\"open\"]\nseconds = 2\n"
    "[[fault]]\nkind = \"delay\"\naccount = 500102\non = [\"open\"]\nseconds = 4\n";

TEST(TicketPicture, TellsTheFillNearestToThePointer) {
  StoredTerminal rig{one_after_another};
  Screen screen;
  TicketBoard& board = rig.main().tickets();
  TicketBoardWindow window{board, screen};
  board.Displayed(true);
  show(window, {1000, 600});
  TicketPictureView& view = window.picture();
  rig.buy("0.9");
  rig.run(5s);
  board.open(1);
  ASSERT_TRUE(rig.until([&] { return board.picture().points.size() == 3; }));
  screen.acted();
  QCoreApplication::processEvents();
  ASSERT_TRUE(view.isVisible());
  ASSERT_EQ(view.marks().size(), 3U);
  const auto tip_at = [&](QPointF place) {
    QToolTip::hideText();
    QHelpEvent help{QEvent::ToolTip, place.toPoint(), view.mapToGlobal(place.toPoint())};
    QApplication::sendEvent(&view, &help);
    return QToolTip::text().toStdString();
  };
  double before = 0.0;
  for (std::size_t i = 0; i < 3; ++i) {
    const TicketPictureView::Mark& mark = view.marks()[i];
    EXPECT_GT(mark.at.x(), before);
    before = mark.at.x();
    const FillPoint& point = board.picture().points[i];
    const std::string tip = tip_at(mark.at + QPointF{7.0, 9.0});
    EXPECT_EQ(tip.find("Account " + std::to_string(500100 + i) + ": bought 0.3 lots at " +
                       fixed_text(point.price, 5) + ", slippage " + fixed_text(*point.worse, 5) + ", after "),
              0U)
        << tip;
  }
  EXPECT_EQ(view.told_at({2.0, 2.0}), QString{}) << "outside of the axes";
  // In a low and narrow pane the list has the room.
  window.resize(500, 300);
  QCoreApplication::processEvents();
  screen.acted();
  EXPECT_FALSE(view.isVisible());
}

}  // namespace
}  // namespace tutti::testing
