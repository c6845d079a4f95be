#include "shell/broker_card.h"

#include "core/text_file.h"
#include "core/texts.h"

namespace tutti {

BrokerCard BrokerCard::read(const Paths& paths) {
  constexpr const char* texts = "\\manage\\dat.cmo";
  constexpr const char* picture = "\\manage\\ufd.jpg";
  const TextFile files{paths};
  BrokerCard card;
  card.name = trim(files.line(texts, 1));
  card.web = trim(files.line(texts, 2));
  card.email = trim(files.line(texts, 3));
  if (files.exists(picture).value_or(false)) card.logo = paths.file(picture);
  return card;
}

}  // namespace tutti
