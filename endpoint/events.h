#pragma once

#include <cstdint>
#include <string_view>

namespace dorvane {

/// Styles of reported messages: the values of the usual message-box icons.
namespace message_style {
inline constexpr std::int32_t kPlain = 0;
inline constexpr std::int32_t kError = 16;
inline constexpr std::int32_t kQuestion = 32;
inline constexpr std::int32_t kWarning = 48;
inline constexpr std::int32_t kInformation = 64;
}  // namespace message_style

/// The nine events through which a conversion reports. Delivered synchronously on the thread that
/// called the endpoint; table names are those of the table list. Where several tables are converted
/// at once, the events of each come together when it has ended.
class IConversionListener {
 public:
  virtual ~IConversionListener() = default;

  /// A failure that the endpoint does not show itself: full text, message style, short title.
  virtual void ErrorOccured(std::string_view message, std::int32_t message_style,
                            std::string_view source) = 0;
  /// Before any connection is opened.
  virtual void ConversionStarted(std::int16_t no_of_tables, bool relations_included) = 0;
  /// After both connections were closed; absent when one of them could not be opened.
  virtual void ConversionEnded() = 0;
  virtual void TableConversionSuccessed(std::string_view table_name) = 0;
  virtual void TableConversionFailed(std::string_view table_name) = 0;
  /// Before the first row of a table, with the number of rows it holds.
  virtual void TableContentTransferStarted(std::string_view table_name,
                                           std::int32_t no_of_records) = 0;
  /// Once for each source row, after it was handled.
  virtual void TableRecordConverted() = 0;
  virtual void TableConversionStarted(std::string_view table_name) = 0;
  virtual void TableRelationsConversionStarted(std::string_view table_name) = 0;
};

}  // namespace dorvane
