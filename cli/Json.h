#pragma once

#include <concepts>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace NSTambraCli {

/// A JSON value, kept as the text that it is written as. So nothing is to be taken apart when it
/// goes: it can be made and dropped while memory runs out.
class CJson {
 public:
  using CMember = std::pair<std::string_view, CJson>;

  CJson(std::nullptr_t) : fText("null") {}
  CJson(std::same_as<bool> auto value) : fText(value ? "true" : "false") {}
  template <class Number>
  requires(std::integral<Number> && !std::same_as<Number, bool>) CJson(Number value)
      : fText(std::to_string(value)) {}
  template <class Number>
  requires std::is_enum_v<Number> CJson(Number value)
      : fText(std::to_string(static_cast<long long>(value))) {}
  /// A finite number.
  CJson(std::same_as<double> auto value) : fText(NumberText(value)) {}
  /// A text in UTF-8; what is not valid becomes U+FFFD.
  CJson(std::string_view text);
  CJson(const std::string& text) : CJson(std::string_view(text)) {}
  CJson(const std::u16string& text);
  CJson(const char* text) : CJson(std::string_view(text)) {}
  /// An object, its members in this order.
  CJson(std::initializer_list<CMember> members);
  /// An array with nothing in it.
  static CJson Array();

  /// Puts a member behind those of an object.
  void Add(std::string_view name, const CJson& value);
  /// Puts a value behind those of an array.
  void Append(const CJson& value);

  /// On one line, without blanks.
  const std::string& Text() const { return fText; }

 private:
  static std::string NumberText(double value);
  /// Puts a piece before the closing bracket, behind a comma where something stands there.
  void Insert(const std::string& piece);

  std::string fText;
};

}  // namespace NSTambraCli
