// All texts that the message service has at one moment. It never changes: a change makes another.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "messages/expand.h"
#include "messages/message_data.h"

namespace zo {

// One name of message files, with what was read under it, in the order in which it is searched.
struct Catalogue {
  std::wstring name;
  std::vector<std::shared_ptr<const MessageData>> chain;
};

class Catalogues final : public MessageSource {
 public:
  Catalogues() = default;
  explicit Catalogues(std::vector<Catalogue> catalogues);

  // The name in any case.
  bool find(std::wstring_view file, unsigned int number, FoundMessage& found) const override;

 private:
  struct Row {
    unsigned int hash;
    Catalogue catalogue;
  };
  std::vector<Row> rows_;  // by hash
};

}  // namespace zo
