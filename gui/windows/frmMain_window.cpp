#include "gui/windows/frmMain_window.h"

#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <vector>

#include "accounts/account_texts.h"
#include "accounts/frmMain.h"
#include "core/texts.h"
#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/list/cell_editor.h"

namespace tutti {

namespace {

const std::vector<std::size_t> numbers{frmMain::index,       frmMain::account,      frmMain::balance,
                                       frmMain::floating,    frmMain::credit,       frmMain::equity,
                                       frmMain::used_margin, frmMain::margin_level, frmMain::free_margin};
constexpr std::array<std::size_t, 3> searched{frmMain::account, frmMain::user_name, frmMain::notes};
constexpr int small_font_pixels = 11;

QWidget* make_info(const char* name, Label& label, Binder& binder) {
  auto* info = new ElidedLabel;
  info->setObjectName(QLatin1String{name});
  QFont font = theme::font();
  font.setPixelSize(small_font_pixels);
  info->setFont(font);
  info->set_colour(QColor{theme::muted});
  binder.show([info, &label] { info->set_text(QString::fromStdString(label.text())); });
  return info;
}

}  // namespace

FrmMainWindow::FrmMainWindow(frmMain& form, Screen& screen, QWidget* parent)
    : QWidget(parent),
      form_(form),
      screen_(screen),
      list_(new RowListView{form.lvwClients, screen, numbers, false, this}) {
  list_->setObjectName(QStringLiteral("lvwClients"));
  list_->columns().keep_readable({"000", "", std::string{state_text(AccountState::disconnected)}, "0000000",
                                  "", "000000.00", "-0000.00", "0000.00", "000000.00", "00000.00",
                                  "00000.00%", "000000.00"});
  list_->set_ink([](const Row& row, std::size_t column) {
    const bool lost = column >= frmMain::balance && row.cell(column).stored_number() < 0.0;
    return lost ? QColor{theme::loss} : QColor{};
  });
  list_->activate = [this](Row& row, std::size_t column) { activate(row, column); };
  auto* editor = new CellEditor{*list_,
                                screen,
                                {.box = form.txteditLo,
                                 .row = [&form] { return form.edited_row(); },
                                 .column = frmMain::notes,
                                 .commit = [&form] { form.commit_notes(); },
                                 .cancel = [&form] { form.cancel_notes(); }}};
  editor->setObjectName(QStringLiteral("txteditLo"));

  Binder binder{screen, *this};
  auto* infos = new QVBoxLayout;
  infos->setContentsMargins(10, 4, 10, 4);
  infos->setSpacing(0);
  infos->addWidget(make_info("labelinfo1", form.labelinfo1, binder));
  infos->addWidget(make_info("labelinfo2", form.labelinfo2, binder));

  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(0);
  all->addWidget(list_, 1);
  all->addLayout(infos);
  setFocusProxy(list_);
}

void FrmMainWindow::activate(Row& row, std::size_t column) {
  if (column == frmMain::notes) return edit_notes_of(row);
  if (activate_account) return activate_account(row);
  form_.LoginClient(row.key());
}

void FrmMainWindow::edit_notes() {
  if (Row* row = form_.mainClientListItem()) edit_notes_of(*row);
}

void FrmMainWindow::edit_notes_of(Row& row) {
  // What is being typed already is not lost by asking for the editor once more.
  if (form_.txteditLo.visible()) return;
  form_.edit_notes(row);
  screen_.acted();
}

void FrmMainWindow::find(const QString& text) {
  RowListModel& rows = list_->rows();
  if (text.isEmpty()) {
    rows.set_filter({});
  } else {
    rows.set_filter([wanted = folded(text.toStdString())](const Row& row) {
      return std::any_of(searched.begin(), searched.end(),
                         [&](std::size_t column) { return contains_letters(row.text(column), wanted); });
    });
  }
  rows.sort_again();
  screen_.acted();
  if (form_.selected_client() == nullptr) {
    if (const Row* first = text.isEmpty() ? nullptr : rows.row_at(0)) list_->go_to(*first);
  } else if (list_->currentIndex().isValid()) {
    list_->scrollTo(list_->currentIndex());
  }
  screen_.acted();
}

QString FrmMainWindow::shown_text() const {
  return QStringLiteral("%1 of %2").arg(list_->rows().rowCount()).arg(form_.lvwClients.size());
}

}  // namespace tutti
