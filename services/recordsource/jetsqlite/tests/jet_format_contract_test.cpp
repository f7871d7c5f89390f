// Format in the English (United States) locale, every case run through the evaluator and
// through SQLite. Expected values come from the Format page,
// https://learn.microsoft.com/en-us/office/vba/language/reference/user-interface-help/format-function-visual-basic-for-applications
// (its examples and the tables of named and user-defined formats), unless a group cites
// another page.
#include "services/recordsource/jetsqlite/tests/jetcontract.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet::testing;

namespace {

const CaseGroup kGroups[] = {
    // MyTime = #17:04:23#, MyDate = #January 27, 1993#.
    { "ThePagesOwnExamples",
      {
          { "Format(#17:04:23#, 'h:m:s')", "\"17:4:23\"" },
          { "Format(#17:04:23#, 'hh:mm:ss am/pm')", "\"05:04:23 pm\"" },
          { "Format(#17:04:23#, 'hh:mm:ss AM/PM')", "\"05:04:23 PM\"" },
          { "Format(#1/27/1993#, 'dddd, mmm d yyyy')", "\"Wednesday, Jan 27 1993\"" },
          { "Format(23)", "\"23\"" },
          { "Format(5459.4, '##,##0.00')", "\"5,459.40\"" },
          { "Format(334.9, '###0.00')", "\"334.90\"" },
          { "Format(5, '0.00%')", "\"500.00%\"" },
          { "Format('HELLO', '<')", "\"hello\"" },
          { "Format('This is it', '>')", "\"THIS IS IT\"" },
      } },
    // "Named numeric formats": Currency in the United States is $ with parentheses for
    // negative amounts; Yes/No, True/False and On/Off show the second word for 0 only.
    { "NamedNumberFormats",
      {
          { "Format(1234.567, 'General Number')", "\"1234.567\"" },
          { "Format(1234.567, 'Currency')", "\"$1,234.57\"" },
          { "Format(-1234.567, 'Currency')", "\"($1,234.57)\"" },
          { "Format(1234.567, 'Fixed')", "\"1234.57\"" },
          { "Format(-0.5, 'Fixed')", "\"-0.50\"" },
          { "Format(1234.567, 'Standard')", "\"1,234.57\"" },
          { "Format(0.12345, 'Percent')", "\"12.35%\"" },
          { "Format(1234.567, 'Scientific')", "\"1.23E+03\"" },
          { "Format(0.000123, 'Scientific')", "\"1.23E-04\"" },
          { "Format(-3.14, 'Yes/No')", "\"Yes\"" },
          { "Format(0, 'Yes/No')", "\"No\"" },
          { "Format(5, 'True/False')", "\"True\"" },
          { "Format(0, 'On/Off')", "\"Off\"" },
          { "Format('12.5', 'Fixed')", "\"12.50\"" },
          { "Format('abc', 'Standard')", "\"abc\"" },
      } },
    // "Named date/time formats" with the United States system settings (short date
    // m/d/yyyy, long date dddd, mmmm d, yyyy, long time h:mm:ss AM/PM).
    { "NamedDateFormats",
      {
          { "Format(#1/27/1993 5:04:23 PM#, 'General Date')", "\"1/27/1993 5:04:23 PM\"" },
          { "Format(#1/27/1993#, 'General Date')", "\"1/27/1993\"" },
          { "Format(#5:04:23 PM#, 'General Date')", "\"5:04:23 PM\"" },
          { "Format(#1/27/1993#, 'Long Date')", "\"Wednesday, January 27, 1993\"" },
          { "Format(#1/27/1993#, 'Medium Date')", "\"27-Jan-93\"" },
          { "Format(#1/27/1993#, 'Short Date')", "\"1/27/1993\"" },
          { "Format(#5:04:23 PM#, 'Long Time')", "\"5:04:23 PM\"" },
          { "Format(#5:04:23 PM#, 'Medium Time')", "\"05:04 PM\"" },
          { "Format(#5:04:23 PM#, 'Short Time')", "\"17:04\"" },
          { "Format('1/27/1993', 'Long Date')", "\"Wednesday, January 27, 1993\"" },
          { "Format(34000, 'Short Date')", "\"1/31/1993\"" },
      } },
    // "User-defined numeric formats": 0 pads, # does not, a lone decimal point stays, ','
    // between placeholders groups and before the point scales by 1,000 ("##0,," shows 100
    // million as 100), E+/E- with the exponent's placeholders, \ and "..." literals.
    { "CustomNumberFormats",
      {
          { "Format(123, '0000')", "\"0123\"" },
          { "Format(123, '####')", "\"123\"" },
          { "Format(0.5, '#.##')", "\".5\"" },
          { "Format(0.5, '0.##')", "\"0.5\"" },
          { "Format(1, '0.##')", "\"1.\"" },
          { "Format(2.5, '0')", "\"3\"" },
          { "Format(1.005, '0.00')", "\"1.01\"" },
          { "Format(100000000, '##0,,')", "\"100\"" },
          { "Format(1234567.891, '#,##0.00')", "\"1,234,567.89\"" },
          { "Format(5551234567, '(###) ###-####')", "\"(555) 123-4567\"" },
          { "Format(1234.5, '0.00E+00')", "\"1.23E+03\"" },
          { "Format(0.00012, '0.00E-00')", "\"1.20E-04\"" },
          { "Format(1234.5, '0.00E-00')", "\"1.23E03\"" },
          { "Format(1234.5, '##0.0E+0')", "\"1.2E+3\"" },
          { "Format(1234.5, '00.0E+0')", "\"12.3E+2\"" },
          { "Format(12.34, '\\R\\M\\B .00')", "\"RMB 12.34\"" },
          { "Format(5, '0 E+')", "\"5 E+\"" },
          { "Format(7, '\"No. \"0')", "\"No. 7\"" },
          { "Format('12.5', '0.00')", "\"12.50\"" },
          { "Format('abc', '0.00')", "\"abc\"" },
      } },
    // "Different formats for different numeric values": two sections (positive and zero;
    // negative), three, four (the last for Null); an empty section uses the first.
    { "SectionsForPositiveNegativeZeroAndNull",
      {
          { "Format(-5, '$#,##0;($#,##0)')", "\"($5)\"" },
          { "Format(5, '$#,##0;($#,##0)')", "\"$5\"" },
          { "Format(0, '$#,##0;($#,##0)')", "\"$0\"" },
          { "Format(0, '$#,##0;;\\Z\\e\\r\\o')", "\"Zero\"" },
          { "Format(-1234, '$#,##0;;\\Z\\e\\r\\o')", "\"-$1,234\"" },
          { "Format(Null, '0;-0;\\Z;\\N\\o\\n\\e')", "\"None\"" },
          { "Format(Null, '0.00')", "Null" },
          { "Format(Null, '0;-0;0;\"n/a 1\"')", "\"n/a 1\"" },
          { "Format(-0.001, '0.00')", "\"0.00\"" },
      } },
    // "User-defined date/time formats": d..dddddd, w, ww (week 1 holds January 1), m..mmmm
    // (m after h is the minute), q, y, yy, yyyy, h, hh, n, nn, s, ss, ttttt, c, AM/PM, A/P,
    // and numbers taken as day serials.
    { "CustomDateFormats",
      {
          { "Format(#1/27/1993#, 'yyyy-mm-dd')", "\"1993-01-27\"" },
          { "Format(#1/27/1993#, 'm/d/yy')", "\"1/27/93\"" },
          { "Format(#1/27/1993#, 'ddd dd mmm')", "\"Wed 27 Jan\"" },
          { "Format(#1/27/1993#, 'ddddd')", "\"1/27/1993\"" },
          { "Format(#1/27/1993#, 'dddddd')", "\"Wednesday, January 27, 1993\"" },
          { "Format(#1/27/1993#, 'q')", "\"1\"" },
          { "Format(#1/27/1993#, 'y')", "\"27\"" },
          { "Format(#1/27/1993#, 'w')", "\"4\"" },
          { "Format(#1/27/1993#, 'ww')", "\"5\"" },
          { "Format(#2/12/1969#, 'w', 2)", "\"3\"" },
          { "Format(#1/27/1993 5:04:23 PM#, 'c')", "\"1/27/1993 5:04:23 PM\"" },
          { "Format(#1/27/1993 5:04:23 PM#, 'h:mm')", "\"17:04\"" },
          { "Format(#1/27/1993 5:04:23 PM#, 'hh:nn A/P')", "\"05:04 P\"" },
          { "Format(#1/27/1993 5:04:23 AM#, 'h:nn:ss a/p')", "\"5:04:23 a\"" },
          { "Format(#1/27/1993 5:04:23 PM#, 'ttttt')", "\"5:04:23 PM\"" },
          { "Format(#1/27/1993#, '\"Year\" yyyy')", "\"Year 1993\"" },
          { "Format(34000, 'yyyy mmmm d')", "\"1993 January 31\"" },
          { "Format('1/27/1993', 'mmmm')", "\"January\"" },
          { "Format('Hello', 'yyyy')", "\"Hello\"" },
      } },
    // "User-defined string formats": @ shows a character or a space, & a character or
    // nothing, right to left unless '!'; the second section is for Null and "".
    { "CustomTextFormats",
      {
          { "Format('5551234', '@@@-@@@@')", "\"555-1234\"" },
          { "Format('abc', '@@@@@')", "\"  abc\"" },
          { "Format('abc', '&&&&&')", "\"abc\"" },
          { "Format('abc', '!@@@@@')", "\"abc  \"" },
          { "Format('abcdef', '@@@')", "\"abcdef\"" },
          { "Format('', '@;\"(empty)\"')", "\"(empty)\"" },
          { "Format(Null, '@;\"(empty)\"')", "\"(empty)\"" },
          { "Format(Null, '@')", "Null" },
          { "Format(Null)", "Null" },
          { "Format$(Null)", "\"\"" },
          { "Format(12, '>@@@@')", "\"  12\"" },
      } },
};

} // namespace

class JetFormatContract : public ::testing::TestWithParam<CaseGroup>
{
};

TEST_P(JetFormatContract, GivesTheDocumentedValueBothWays)
{
    expectBothWays(GetParam().cases);
}

INSTANTIATE_TEST_SUITE_P(Formats, JetFormatContract, ::testing::ValuesIn(kGroups), groupName);
