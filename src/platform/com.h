// Owners of what COM gives: objects, texts, and COM itself.
#pragma once

#include <windows.h>
// windows.h before the headers of Automation
#include <oleauto.h>

#include <cstddef>
#include <new>
#include <string_view>
#include <utility>

namespace zo {

// Keeps COM there for whoever calls it, on threads that have not initialised it and on those that
// have, in either way; it says nothing about what a thread may initialise later. Any thread may end
// it.
class ComUsage {
 public:
  ComUsage() noexcept {
    if (FAILED(CoIncrementMTAUsage(&cookie_))) cookie_ = nullptr;
  }
  ~ComUsage() {
    if (cookie_) CoDecrementMTAUsage(cookie_);
  }
  ComUsage(const ComUsage&) = delete;
  ComUsage& operator=(const ComUsage&) = delete;

 private:
  CO_MTA_USAGE_COOKIE cookie_ = nullptr;
};

// One reference to an object of COM.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(const ComPtr& other) noexcept : object_(other.object_) {
    if (object_) object_->AddRef();
  }
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() {
    if (object_) object_->Release();
  }

  [[nodiscard]] T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  // For a call that gives an object; what was held is let go of.
  [[nodiscard]] T** out() noexcept {
    *this = ComPtr();
    return &object_;
  }
  template <class U>
  [[nodiscard]] ComPtr<U> as(const IID& iid) const noexcept {
    ComPtr<U> other;
    if (object_) object_->QueryInterface(iid, reinterpret_cast<void**>(other.out()));
    return other;
  }

 private:
  T* object_ = nullptr;
};

// A text of Automation. Throws std::bad_alloc.
class ComText {
 public:
  ComText() = default;
  explicit ComText(std::wstring_view text)
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (!text_) throw std::bad_alloc();
  }
  // Room for a text, which is still to be written there.
  explicit ComText(std::size_t size) : text_(SysAllocStringLen(nullptr, static_cast<UINT>(size))) {
    if (!text_) throw std::bad_alloc();
  }
  ComText(ComText&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  ComText(const ComText&) = delete;
  ComText& operator=(const ComText&) = delete;
  ~ComText() { SysFreeString(text_); }

  [[nodiscard]] BSTR get() const noexcept { return text_; }
  [[nodiscard]] BSTR* out() noexcept {
    SysFreeString(std::exchange(text_, nullptr));
    return &text_;
  }
  [[nodiscard]] std::wstring_view view() const noexcept { return {text_, SysStringLen(text_)}; }

 private:
  BSTR text_ = nullptr;
};

}  // namespace zo
