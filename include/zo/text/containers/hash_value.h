// Key policies of dictionaries: when keys are equal, and what they hash to.
//
// Two keys are one when they hash alike and compare equal: keys that compare equal should hash
// alike and must have one fingerprint where they do. A dictionary calls the policy of its own
// type H without virtual calls; ZoHashKey<K> shows any policy to the engine. A policy may offer
// more for look-up (text_keys.h does):
//   static Form lookUpForm(key)     what is hashed and compared, of a K or of another form of a key
//   static HashedKey hashKey(Form)  the same hash, and whether the key is plain
//   static bool isEqual(K, Form, bool bothPlain)
//   static unsigned fingerprintKey(Form)  the same as fingerprint(), where that is overridden
//
// Errors:  what equality and std::hash of the key throw passes through.
// Threads: stateless as given here; any number of threads.
#pragma once

#include <zo/text/containers/vcallbacks.h>
#include <zo/text/hashed_key.h>

#include <string_view>  // std::hash

template <class K>
class ZoHashValue {
 public:
  ZoHashValue() = default;
  ZoHashValue(const ZoHashValue&) = default;
  ZoHashValue& operator=(const ZoHashValue&) = default;
  virtual ~ZoHashValue() = default;

  // 0 when the keys are equal.
  [[nodiscard]] virtual int compare(const K& a, const K& b) const { return a == b ? 0 : 1; }
  [[nodiscard]] virtual unsigned hash(const K& key) const {
    const std::size_t h = std::hash<K>{}(key);
    return static_cast<unsigned>(h ^ (h >> 32));
  }
  // As ZoVHashKey::fingerprint: override it for keys that come from outside.
  [[nodiscard]] virtual unsigned fingerprint(const K&) const { return 0; }
};

// The policy ignoring case where the type has one (text); else the type's own equality and hash.
template <class K>
class ZoCIHashValue : public ZoHashValue<K> {};

template <class K>
class ZoHashKey final : public ZoVHashKey {
 public:
  explicit ZoHashKey(const ZoHashValue<K>& policy) noexcept : policy_(&policy) {}
  int compare(const void* a, const void* b) const override {
    return policy_->compare(*static_cast<const K*>(a), *static_cast<const K*>(b));
  }
  unsigned hash(const void* key) const override {
    return policy_->hash(*static_cast<const K*>(key));
  }
  unsigned fingerprint(const void* key) const override {
    return policy_->fingerprint(*static_cast<const K*>(key));
  }

 private:
  const ZoHashValue<K>* policy_;  // not owned; outlives this
};
