#pragma once

#include <charconv>
#include <concepts>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "sandbox/storage/catalog.h"

// Definitions as texts: their members one after the other. A number ends with a blank; a text and a
// list begin with their length, a definition within another is its own members.
namespace sandbox {

/// The members of each definition, in the order in which they are kept.
template <typename Definition>
constexpr auto kMembers = std::tuple();
template <>
inline constexpr auto kMembers<TypeInfo> = std::tuple(&TypeInfo::type, &TypeInfo::length,
                                                      &TypeInfo::precision, &TypeInfo::scale,
                                                      &TypeInfo::order);
template <>
inline constexpr auto kMembers<ColumnDef> = std::tuple(
    &ColumnDef::id, &ColumnDef::name, &ColumnDef::type, &ColumnDef::nullable, &ColumnDef::identity,
    &ColumnDef::seed, &ColumnDef::increment, &ColumnDef::default_name, &ColumnDef::default_text,
    &ColumnDef::default_id, &ColumnDef::row_guid, &ColumnDef::user_type, &ColumnDef::collation,
    &ColumnDef::computed_text, &ColumnDef::persisted, &ColumnDef::sparse, &ColumnDef::masked,
    &ColumnDef::hidden, &ColumnDef::generated);
template <>
inline constexpr auto kMembers<IndexColumn> = std::tuple(&IndexColumn::column_id,
                                                         &IndexColumn::descending);
template <>
inline constexpr auto kMembers<IndexDef> = std::tuple(&IndexDef::id, &IndexDef::object_id,
                                                      &IndexDef::name, &IndexDef::unique,
                                                      &IndexDef::primary, &IndexDef::clustered,
                                                      &IndexDef::disabled, &IndexDef::columns,
                                                      &IndexDef::included, &IndexDef::filter);
template <>
inline constexpr auto kMembers<ForeignKeyDef> = std::tuple(
    &ForeignKeyDef::id, &ForeignKeyDef::name, &ForeignKeyDef::columns, &ForeignKeyDef::parent_table,
    &ForeignKeyDef::parent_columns, &ForeignKeyDef::on_delete, &ForeignKeyDef::on_update,
    &ForeignKeyDef::disabled, &ForeignKeyDef::not_trusted);
template <>
inline constexpr auto kMembers<CheckDef> = std::tuple(&CheckDef::id, &CheckDef::name,
                                                      &CheckDef::text, &CheckDef::column_id,
                                                      &CheckDef::disabled, &CheckDef::not_trusted);
template <>
inline constexpr auto kMembers<PropertyDef> = std::tuple(&PropertyDef::column_id,
                                                         &PropertyDef::name, &PropertyDef::value);
template <>
inline constexpr auto kMembers<TableDef> = std::tuple(&TableDef::id, &TableDef::schema,
                                                      &TableDef::name, &TableDef::next_column_id,
                                                      &TableDef::columns, &TableDef::indexes,
                                                      &TableDef::foreign_keys, &TableDef::checks,
                                                      &TableDef::properties);
template <>
inline constexpr auto kMembers<ViewDef> = std::tuple(&ViewDef::id, &ViewDef::schema, &ViewDef::name,
                                                     &ViewDef::text);
template <>
inline constexpr auto kMembers<SchemaDef> = std::tuple(&SchemaDef::id, &SchemaDef::name,
                                                       &SchemaDef::owner);
template <>
inline constexpr auto kMembers<UserDef> = std::tuple(&UserDef::id, &UserDef::name, &UserDef::login,
                                                     &UserDef::default_schema);
template <>
inline constexpr auto kMembers<AliasTypeDef> = std::tuple(&AliasTypeDef::id, &AliasTypeDef::schema,
                                                          &AliasTypeDef::name, &AliasTypeDef::type,
                                                          &AliasTypeDef::nullable);
/// Tables and views have texts of their own.
template <>
inline constexpr auto kMembers<Catalog> = std::tuple(&Catalog::schemas, &Catalog::users,
                                                     &Catalog::types, &Catalog::last_object_id);

template <typename T>
concept Number = std::integral<T> || std::is_enum_v<T>;
template <typename T>
concept List = requires(T list) {
  list.emplace_back();
};

template <typename T>
void Write(const T& value, std::string& to) {
  if constexpr (Number<T>) {
    to += std::to_string(static_cast<std::int64_t>(value)) + ' ';
  } else if constexpr (std::same_as<T, std::string>) {
    Write(value.size(), to);
    to += value;
  } else if constexpr (List<T>) {
    Write(value.size(), to);
    for (const auto& each : value) Write(each, to);
  } else {
    std::apply([&](auto... member) { (Write(value.*member, to), ...); }, kMembers<T>);
  }
}

/// Takes a value off the front of `from`. Throws std::runtime_error where there is none.
template <typename T>
void Read(std::string_view& from, T& value) {
  if constexpr (Number<T>) {
    std::int64_t number = 0;
    const auto [end, failure] = std::from_chars(from.data(), from.data() + from.size(), number);
    if (failure != std::errc() || end == from.data() + from.size())
      throw std::runtime_error("a stored definition is damaged");
    from.remove_prefix(static_cast<std::size_t>(end - from.data()) + 1);
    value = static_cast<T>(number);
  } else if constexpr (std::same_as<T, std::string>) {
    std::size_t size = 0;
    Read(from, size);
    value = from.substr(0, size);
    from.remove_prefix(value.size());
  } else if constexpr (List<T>) {
    std::size_t count = 0;
    Read(from, count);
    value.clear();
    for (; count > 0; --count) Read(from, value.emplace_back());
  } else {
    std::apply([&](auto... member) { (Read(from, value.*member), ...); }, kMembers<T>);
  }
}

}  // namespace sandbox
