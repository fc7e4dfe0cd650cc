#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/TextNumbers.h"
#include "app/TextResources.h"
#include "cli/Json.h"
#include "cli/LastResort.h"

namespace NSTambraCli {
namespace {

std::string ShownFor(const std::exception_ptr& failure) {
  testing::internal::CaptureStderr();
  try {
    std::rethrow_exception(failure);
  } catch (...) {
    EXPECT_EQ(ShowLastFailure(), kExitFailed);
  }
  return testing::internal::GetCapturedStderr();
}

TEST(LastResort, ShowsTheWordsOfTheAlertsOrOfTheFailure) {
  const NSTambraPacking::CTextResources texts;
  const auto message = [&texts](NSTambraPacking::CAlertNumber alert) {
    return NSTolbrook::Utf8FromText(texts.Alert(alert).fMessage) + "\n";
  };
  EXPECT_EQ(ShownFor(std::make_exception_ptr(std::bad_alloc())),
            message(NSTambraPacking::kGenericOutOfMemory));
  EXPECT_EQ(ShownFor(std::make_exception_ptr(1)), message(NSTambraPacking::kAlertUnknownError));
  EXPECT_EQ(ShownFor(std::make_exception_ptr(std::runtime_error("why"))), "why\n");
}

TEST(Json, IsWrittenOnOneLine) {
  const std::string hostile("\"\\/\b\f\n\r\t\x01\x7F \0é", 14);
  CJson array = CJson::Array();
  const CJson empty = array;
  for (const CJson& item : {CJson(true), CJson(std::int8_t{-5}), CJson(~std::uint64_t{0})}) {
    array.Append(item);
  }
  CJson value = {{"texts", {{hostile, "\xFF"}}}, {"array", array}, {"none", empty}};
  value.Add("null", nullptr);
  EXPECT_EQ(value.Text(),
            "{\"texts\":{\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u007f \\u0000é\":\"\uFFFD\"},"
            "\"array\":[true,-5,18446744073709551615],\"none\":[],\"null\":null}");
}

}  // namespace
}  // namespace NSTambraCli
