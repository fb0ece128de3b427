// clang-format off
#include <zo/containers.h>

#include <memory>

template <class T>
using Owner = std::unique_ptr<T>;

void copying(const ZoArray<Owner<int>>& array, const ZoList<Owner<char>>& list,
             const ZoHashDict<Owner<int>, int>& dict, const ZoTree<int, Owner<int>>& tree) {
  ZoArray copyOfArray(array);  // error: can only be moved
  ZoList copyOfList(list);     // error: can only be moved
  ZoHashDict copyOfDict(dict); // error: can only be moved
  ZoTree copyOfTree(tree);     // error: can only be moved
  ZoArray<Owner<long>> longs, others;
  longs = others;              // error: can only be moved
  ZoArray<Owner<short>> shorts{Owner<short>()};  // error: can only be moved
}

void traps(ZoArray<int> array, ZoHashDict<int, ZoString> dict) {
  array.append(1);           // error: nodiscard
  dict.insertAt(L"a", 1);    // error: nodiscard
  dict.put(L"a", 1);         // error: nodiscard
  array.sort();              // error: nodiscard
  const ZoCompare<int> order;
  (void)array.sort(order, 5);              // error: ascending is a bool
  array.remove(1, order, 2);               // error: all is a bool
  array.removeAll(1);        // error: write remove(value, compare, true)
  dict.removeAll(L"a");      // error: or removeAt(key)
  ZoHashDict<int, ZoString> dense(0.5);  // error: the number of buckets comes first
  ZoArray<int> half(0.5);                // error: the capacity comes first
}
