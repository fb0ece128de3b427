#include "messages/expand.h"

#include <algorithm>

#include "text/code_units.h"

namespace zo {

bool MessageExpander::expand(const FoundMessage& message) {
  read_ += message.text.size();
  run(message);
  return complete_;
}

void MessageExpander::run(const FoundMessage& message) {
  open_.push_back(message.text.data());
  MarkupReader reader(message.text);
  std::vector<Level> levels;
  while (!full_) {
    const MarkupReader::Piece piece = reader.next();
    if (piece.kind == MarkupReader::kEnd) break;
    place(piece, message, reader, levels);
  }
  open_.pop_back();
}

void MessageExpander::place(const MarkupReader::Piece& piece, const FoundMessage& message,
                            MarkupReader& reader, std::vector<Level>& levels) {
  const bool isWanted = levels.empty() || levels.back().wanted == levels.back().current;
  switch (piece.kind) {
    case MarkupReader::kNextForm:
      ++levels.back().current;
      break;
    case MarkupReader::kClose:
      levels.pop_back();
      break;
    case MarkupReader::kPlural:
      if (isWanted) {
        plural(piece, message, reader, levels);
      } else {
        reader.skipForms();
      }
      break;
    case MarkupReader::kArgument:
      if (isWanted) argument(piece);
      break;
    case MarkupReader::kReference:
      if (isWanted) reference(piece, message);
      break;
    default:
      if (isWanted) append(piece.text);
  }
}

void MessageExpander::argument(const MarkupReader::Piece& piece) {
  if (arguments_ && arguments_->has(piece.number)) {
    std::wstring text;
    arguments_->print(piece.number, text);
    append(text);
    return;
  }
  complete_ = complete_ && !arguments_;
  append(piece.text);
}

void MessageExpander::reference(const MarkupReader::Piece& piece, const FoundMessage& message) {
  FoundMessage found;
  const bool isSound =
      open_.size() < kMaxReferences &&
      source_.find(piece.file.empty() ? message.file : piece.file, piece.number, found) &&
      std::ranges::find(open_, found.text.data()) == open_.end() &&
      read_ + found.text.size() <= kMaxExpandRead;
  if (isSound) {
    read_ += found.text.size();
    run(found);
    return;
  }
  complete_ = false;
  append(piece.text);
}

// Without its argument the whole plural stays as it is written.
void MessageExpander::plural(const MarkupReader::Piece& piece, const FoundMessage& message,
                             MarkupReader& reader, std::vector<Level>& levels) {
  if (arguments_ && arguments_->has(piece.number)) {
    const PluralNumber number = arguments_->numberOf(piece.number);
    levels.push_back({pluralForm(*message.rule, number, reader.countForms()), 0});
    return;
  }
  const std::size_t start = reader.position() - piece.text.size();
  reader.skipForms();
  complete_ = complete_ && !arguments_;
  append(message.text.substr(start, reader.position() - start));
}

void MessageExpander::append(std::wstring_view text) {
  std::size_t room = kMaxExpanded - out_.size();
  if (text.size() > room) {
    complete_ = false;
    full_ = true;
    if (room > 0 && isHighSurrogate(text[room - 1])) --room;  // no half of a pair
    text = text.substr(0, room);
  }
  out_ += text;
}

}  // namespace zo
