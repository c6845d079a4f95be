#include "gui/kit/desktop_sound.h"

#include <QDir>
#include <QUrl>

namespace tutti {

namespace {

constexpr qint64 burst_ms = 150;

// The compiled-in file of that name in whatever letter case; empty when there is none.
QString compiled_in(const QString& name) {
  const QDir folder{QStringLiteral(":/sounds")};
  for (const QString& each : folder.entryList()) {
    if (each.compare(name, Qt::CaseInsensitive) == 0) return folder.filePath(each);
  }
  return {};
}

}  // namespace

void DesktopSound::play(const std::string& name) {
  if (muted_) return;
  auto [at, first] = sounds_.try_emplace(name);
  Sound& sound = at->second;
  if (first) sound.effect = load(name);
  if (sound.effect == nullptr || (sound.since.isValid() && sound.since.elapsed() < burst_ms)) return;
  sound.since.start();
  sound.effect->play();
}

std::unique_ptr<QSoundEffect> DesktopSound::load(const std::string& name) const {
  const std::filesystem::path own = paths_.file(name);
  std::error_code error;
  QUrl source = QUrl::fromLocalFile(QString::fromStdString(own.string()));
  if (!std::filesystem::is_regular_file(own, error)) {
    const QString file = compiled_in(QString::fromStdString(own.filename().string()));
    if (file.isEmpty()) return nullptr;
    source = QUrl{QStringLiteral("qrc") + file};
  }
  auto effect = std::make_unique<QSoundEffect>();
  effect->setSource(source);
  return effect;
}

}  // namespace tutti
