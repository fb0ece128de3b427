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
  open_[depth_++] = message.text.data();
  MarkupReader reader(message.text);
  std::vector<Level> levels;
  while (!full_) {
    const MarkupReader::Piece piece = reader.next();
    if (piece.kind == MarkupReader::kEnd) break;
    if (piece.kind == MarkupReader::kText && levels.empty()) {
      append(piece.text);
    } else {
      place(piece, message, reader, levels);
    }
  }
  --depth_;
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
    arguments_->print(piece.number, out_);
    cut();
    return;
  }
  complete_ = complete_ && !arguments_;
  append(piece.text);
}

void MessageExpander::reference(const MarkupReader::Piece& piece, const FoundMessage& message) {
  FoundMessage found;
  const bool isSound =
      depth_ < kMaxReferences &&
      source_.find(piece.file.empty() ? message.file : piece.file, piece.number, found) &&
      !isOpen(found) && read_ + found.text.size() <= kMaxExpandRead;
  if (isSound) {
    read_ += found.text.size();
    run(found);
    return;
  }
  complete_ = false;
  append(piece.text);
}

bool MessageExpander::isOpen(const FoundMessage& message) const noexcept {
  return std::ranges::find(open_.begin(), open_.begin() + depth_, message.text.data()) !=
         open_.begin() + depth_;
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
  out_ += text;
  cut();
}

// To the bound, without leaving half of a surrogate pair.
void MessageExpander::cut() {
  if (out_.size() <= kMaxExpanded) return;
  complete_ = false;
  full_ = true;
  out_.resize(isHighSurrogate(out_[kMaxExpanded - 1]) ? kMaxExpanded - 1 : kMaxExpanded);
}

}  // namespace zo
