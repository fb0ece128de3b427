// Classes whose slots modules know that were built before: check.py reads their tables from clang.
#include <zo_com.h>

// A class of which a constructor is compiled gets its table.
template <class Base>
class Probe : public Base {
 public:
  using Base::Base;
  Probe();
};
template <class Base>
Probe<Base>::Probe() {}

template class Probe<ZoSysDisp>;
template class Probe<ZoCfg>;
template class Probe<ZoError>;
template class Probe<ZoExecute>;
template class Probe<ZoFileSystem>;

class Archive : public ZoArchive {
  Archive();
};
Archive::Archive() {}
class Dump : public ZoDumpArchive {
  Dump();
};
Dump::Dump() {}
class Iterator : public ZoVArrayIterator {
  explicit Iterator(ZoVArray& array);
};
Iterator::Iterator(ZoVArray& array) : ZoVArrayIterator(array) {}
