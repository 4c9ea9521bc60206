#include <fstream>
#include <sstream>

#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

// The script cut at its lines "go".
std::vector<std::string> Batches(const char* file) {
  std::ifstream in(file);
  std::vector<std::string> batches(1);
  for (std::string line; std::getline(in, line);) {
    if (line == "go") {
      batches.emplace_back();
    } else {
      batches.back() += line + "\n";
    }
  }
  return batches;
}

class SampleTest : public BatchTest {
 protected:
  SampleTest() {
    for (const std::string& batch : Batches(SAMPLE_SCRIPT)) Must(batch);
  }
};

TEST_F(SampleTest, KeepsEveryRowAndValue) {
  EXPECT_EQ(Query("select count(*) from Readings"), "20000");
  EXPECT_EQ(
      Query("select ReadingId, Sensor, Reading, Note from Readings where ReadingId in (17, 20000)"),
      "17|sensor 0|2.125|Messung № 17;20000|sensor 8|2500|NULL");
  EXPECT_EQ(Query("select datalength(Picture) from Pictures order by PictureId"),
            "2500;5242880;NULL");
  EXPECT_EQ(Query("select PictureId from Pictures order by 1"), "0;1;2");
  EXPECT_EQ(Query("select EmployeeId, FirstName from Employees order by EmployeeId desc"),
            "120|Μαρία;115|太郎;110|Анна;105|Jürgen;100|Ada");
  EXPECT_EQ(Query("select Stock, Grade, Price, Code, Motto, Barcode, ReleasedOn from Products "
                  "where ProductId = 4"),
            "-1|3|9.9900|10|It's \"good\" \\ cheap|0x0AFF|Feb  3 2001  4:05AM");
  EXPECT_EQ(Query("select CourierId, HomeCountry, HomeNumber from Couriers"),
            "1|DE|2;2|NULL|NULL;3|DE|1");
  EXPECT_EQ(
      Query(
          "select ABigInt, ATinyInt, ABit, ADecimal, ANumeric, AMoney, ADate, AChar, AnNVarChar, "
          "ABinary, "
          "AVarBinary, AVariant, convert(varchar(30), ADateTime2, 121), convert(varchar(8), ATime) "
          "from [Every Type] where Id < 3 order by Id"),
      "-9223372036854775808|0|0|-1234567890123456789012345678.0123456789|-999999.999|-"
      "922337203685477.58|"
      "1000-01-01|a         |я|0x0100000000000000|0x|42|1000-01-01 00:00:00.000001|00:00:00;"
      "9223372036854775807|127|1|1234567890123456789012345678.0123456789|999999.999|"
      "922337203685477.58|"
      "9999-12-31|0123456789|😀|0x0102030405060708|0xDEADBEEF|text in a variant|"
      "9999-12-31 23:59:59.999999|23:59:59");
}

TEST_F(SampleTest, SurvivesReopening) {
  Reopen();
  EXPECT_EQ(Query("select Title from Products where ProductId = 2"), "Nail \"long\"");
  EXPECT_EQ(Run("insert Products (ProductId, Title) values (1, N'again')").Numbers(), "2627 3621");
  Must("insert Suggestions (Body) values (N'a')");
  Must("insert Pictures (Title) values (N'next')");
  EXPECT_EQ(Query("select max(PictureId) from Pictures"), "3");
}

TEST_F(SampleTest, FollowsTheRulesOfItsKeys) {
  EXPECT_EQ(Run("delete Products where ProductId = 1").Numbers(), "547 3621");
  // A default that no warehouse has any more refuses the change that leads to it.
  EXPECT_EQ(Run("update Countries set Code = 'XX' where Code = 'DE'").Numbers(), "547 3621");
  EXPECT_EQ(Query("select count(*) from Stocks where Country = 'DE'"), "3");
  Must("update Countries set Code = 'XX' where Code = 'JP'");
  EXPECT_EQ(Query("select distinct Country from Warehouses order by Country"), "DE;US;XX");
  EXPECT_EQ(Query("select Quantity from Stocks where Country = 'XX'"), "77");
  EXPECT_EQ(Query("select Country, Number from Shipments where ShipmentId = 2"), "NULL|NULL");
  Must("delete Warehouses where Country = 'XX'");
  EXPECT_EQ(Query("select count(*) from Stocks"), "3");
  Must("delete Warehouses where Country = 'DE' and Number = 2");
  EXPECT_EQ(Query("select HomeCountry, HomeNumber from Couriers where CourierId = 1"), "DE|1");
}

}  // namespace
}  // namespace sandbox::testing
