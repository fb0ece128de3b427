#include <zo/messages/message_marks.h>

#include "messages/markup.h"

std::vector<ZoMessageMark> zoMessageMarks(zo::TextParameter text) {
  std::vector<ZoMessageMark> marks;
  zo::MarkupReader reader(text);
  while (true) {
    const auto at = static_cast<unsigned int>(reader.position());
    const zo::MarkupReader::Piece piece = reader.next();
    if (piece.kind == zo::MarkupReader::kEnd) return marks;
    ZoMessageMark mark{.position = at,
                       .length = static_cast<unsigned int>(piece.text.size()),
                       .number = piece.number,
                       .file = piece.file};
    if (piece.kind == zo::MarkupReader::kReference) {
      mark.kind = ZoMessageMark::kReference;
    } else if (piece.kind == zo::MarkupReader::kPlural) {
      zo::MarkupReader behind = reader;
      behind.skipForms();
      mark.kind = ZoMessageMark::kPlural;
      mark.forms = reader.countForms();
      mark.length = static_cast<unsigned int>(behind.position()) - at;
    } else if (piece.kind != zo::MarkupReader::kArgument) {
      continue;
    }
    marks.push_back(mark);
  }
}
