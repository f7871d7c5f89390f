// The dialect's functions and operators, each case run through the evaluator (--eval, the
// FoxPro back end) and through SQLite with its values in columns. Expected values come
// from the pages cited beside each group; VBA pages are under
// https://learn.microsoft.com/en-us/office/vba/language/reference/user-interface-help/.
// VBA modules compare text in binary by default; Jet expressions compare as text, so
// calls without a compare argument follow the Jet rule.
#include "services/recordsource/jetsqlite/tests/jetcontract.h"

#include <gtest/gtest.h>

using namespace plx;
using namespace plx::jet::testing;

namespace {

const CaseGroup kGroups[] = {
    // https://learn.microsoft.com/en-us/office/vba/api/access.application.nz: "always returns
    // a zero-length string when used in a query expression".
    { "NzGivesTheSecondValueOrAZeroLengthString",
      {
          { "Nz(Null)", "\"\"" },
          { "Nz(Null, 'none')", "\"none\"" },
          { "Nz('Boston', 'none')", "\"Boston\"" },
          { "Nz(Null, 0) + 5", "5" },
          { "Nz(12.5, 0)", "12.5" },
          { "Nz(Null, Null)", "Null" },
      } },
    // strcomp-function: StrComp("ABCD", "abcd", 1) = 0, (.., 0) = -1, ("abcd", "ABCD") = 1
    // in binary. Jet's default is text (jet-sql reference §5: StrComp('FOO','foo') = 0).
    // Trailing blanks count: LibreOffice strcomp.vb, StrComp("text  ", "text", 1) = 1.
    { "StrCompComparesAsTextUnlessToldBinary",
      {
          { "StrComp('ABCD', 'abcd', 1)", "0" },
          { "StrComp('ABCD', 'abcd', 0)", "-1" },
          { "StrComp('abcd', 'ABCD', 0)", "1" },
          { "StrComp('FOO', 'foo')", "0" },
          { "StrComp('apple', 'Banana')", "-1" },
          { "StrComp('text  ', 'text', 1)", "1" },
          { "StrComp(Null, 'a')", "Null" },
      } },
    // replace-function: the result begins at start; count -1 replaces all; a zero-length
    // find gives a copy, a zero-length replace removes; start > Len gives "".
    // Jackcess DefaultFunctionsTest: Replace('fOo', 'o', 'a') = "faa" (text compare).
    { "ReplaceStartsTheResultAtStartAndCountsReplacements",
      {
          { "Replace('abcabc', 'b', 'X')", "\"aXcaXc\"" },
          { "Replace('abcabc', 'b', 'X', 3)", "\"caXc\"" },
          { "Replace('abcabc', 'b', 'X', 1, 1)", "\"aXcabc\"" },
          { "Replace('abc', '', 'X')", "\"abc\"" },
          { "Replace('abc', 'b', '')", "\"ac\"" },
          { "Replace('abc', 'b', 'X', 5)", "\"\"" },
          { "Replace('fOo', 'o', 'a')", "\"faa\"" },
          { "Replace('fOo', 'o', 'a', 1, -1, 0)", "\"fOa\"" },
      } },
    // space-function, string-function (String(5, "*"), String(5, 42), String(10, "ABC");
    // a code above 255 is taken Mod 256), strreverse-function.
    { "SpaceStringAndStrReverseBuildText",
      {
          { "'[' & Space(3) & ']'", "\"[   ]\"" },
          { "Len(Space(0))", "0" },
          { "Space$(2) & 'x'", "\"  x\"" },
          { "String(5, '*')", "\"*****\"" },
          { "String(5, 42)", "\"*****\"" },
          { "String(10, 'ABC')", "\"AAAAAAAAAA\"" },
          { "String(2, 321)", "\"AA\"" },
          { "String(Null, 'a')", "Null" },
          { "String$(3, 'z')", "\"zzz\"" },
          { "StrReverse('Jet 4.0')", "\"0.4 teJ\"" },
          { "StrReverse('')", "\"\"" },
      } },
    // instrrev-function: the return-value table (zero-length check 0, Null check Null,
    // zero-length match gives start, start > Len gives 0).
    { "InStrRevSearchesFromTheEnd",
      {
          { "InStrRev('abcabc', 'bc')", "5" },
          { "InStrRev('abcabc', 'bc', 4)", "2" },
          { "InStrRev('abcabc', 'BC')", "5" },
          { "InStrRev('abcabc', 'BC', -1, 0)", "0" },
          { "InStrRev('', 'a')", "0" },
          { "InStrRev(Null, 'a')", "Null" },
          { "InStrRev('abc', '', 2)", "2" },
          { "InStrRev('abc', 'a', 9)", "0" },
      } },
    // ltrim-rtrim-and-trim-functions, mid-function ("Mid Function Demo"), right-function
    // ("Hello World"), len-function, lcase-function, asc-function.
    { "TheOlderTextFunctionsKeepTheirRules",
      {
          { "'[' & LTrim('  a  ') & ']'", "\"[a  ]\"" },
          { "'[' & RTrim('  a  ') & ']'", "\"[  a]\"" },
          { "'[' & Trim('  a  ') & ']'", "\"[a]\"" },
          { "LTrim$('  a')", "\"a\"" },
          { "RTrim$('a  ')", "\"a\"" },
          { "Mid('Mid Function Demo', 1, 3)", "\"Mid\"" },
          { "Mid('Mid Function Demo', 14, 4)", "\"Demo\"" },
          { "Mid('Mid Function Demo', 5)", "\"Function Demo\"" },
          { "Right('Hello World', 1)", "\"d\"" },
          { "Right('Hello World', 6)", "\" World\"" },
          { "Right('Hello World', 20)", "\"Hello World\"" },
          { "Len('Hello World')", "11" },
          { "Len(Null)", "Null" },
          { "LCase('Hello World 1234')", "\"hello world 1234\"" },
          { "Asc('A')", "65" },
          { "Asc('a')", "97" },
          { "Asc('Apple')", "65" },
      } },
    // type-conversion-functions examples: CBool(A = B), CByte(125.5678) = 126,
    // CCur(MyDouble * 2) with 543.214588 = 1086.4292, CDate("February 12, 1969"),
    // CDate("4:35:47 PM"), CSng(75.3421115) = 75.34211, CVar(4534 & "000") = "4534000".
    // CDate of a number counts days from 12/30/1899.
    { "ConversionsRoundAndCheckTheirRange",
      {
          { "CBool(5)", "True" },
          { "CBool(0)", "False" },
          { "CBool('True')", "True" },
          { "CBool('0')", "False" },
          { "CByte(125.5678)", "126" },
          { "CByte(2.5)", "2" },
          { "CCur(543.214588 * 2)", "1086.4292" },
          { "CCur(1.00005)", "1" },
          { "CDate('February 12, 1969')", "#02/12/1969#" },
          { "CDate('4:35:47 PM')", "#16:35:47#" },
          { "CDate(37000)", "#04/19/2001#" },
          { "CDate('37000.5')", "#04/19/2001 12:00:00#" },
          { "CSng(75.3421115)", "75.34211" },
          { "CSng(1.1)", "1.1" },
          { "CVar(4534 & '000')", "\"4534000\"" },
          { "CVar(Null)", "Null" },
      } },
    // isnumeric-function ("53", "459.95", "45 Help"), isdate-function ("February 12, 1969",
    // #2/12/69#, "Hello"), isempty-function (Null is not Empty), vartype-function constants
    // (vbNull 1, vbInteger 2, vbLong 3, vbDouble 5, vbDate 7, vbString 8, vbBoolean 11).
    { "TestsReportTheKindOfAValue",
      {
          { "IsNumeric('53')", "True" },
          { "IsNumeric('459.95')", "True" },
          { "IsNumeric('45 Help')", "False" },
          { "IsNumeric(Null)", "False" },
          { "IsNumeric('&H1A')", "True" },
          { "IsDate('February 12, 1969')", "True" },
          { "IsDate(#2/12/1969#)", "True" },
          { "IsDate('Hello')", "False" },
          { "IsDate('1/31/2003 7:00:00 PM')", "True" },
          { "IsEmpty(Null)", "False" },
          { "VarType(Null)", "1" },
          { "VarType(5)", "2" },
          { "VarType(100000)", "3" },
          { "VarType(2.5)", "5" },
          { "VarType(#1/1/2003#)", "7" },
          { "VarType('x')", "8" },
          { "VarType(True)", "11" },
      } },
    // choose-function: Choose(2, "Speedy", "United", "Federal") = "United"; an index outside
    // the list gives Null; a fractional index is rounded. switch-function: the first True
    // expression's value, Null when none is True.
    { "ChooseAndSwitchPickAValue",
      {
          { "Choose(2, 'Speedy', 'United', 'Federal')", "\"United\"" },
          { "Choose(4, 'Speedy', 'United', 'Federal')", "Null" },
          { "Choose(0, 'Speedy')", "Null" },
          { "Choose(1.6, 'a', 'b')", "\"b\"" },
          { "Switch('Rome' = 'London', 'English', 'Rome' = 'Rome', 'Italian')", "\"Italian\"" },
          { "Switch(1 > 2, 'a', Null, 'b')", "Null" },
          { "Switch(0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 1, 6)", "6" },
      } },
    // abs-function, int-fix-functions (Int(-99.8) = -100, Fix(-99.8) = -99), round-function
    // (half to even: 12.55 -> 12.6, 12.65 -> 12.6, 12.75 -> 12.8), sgn-function,
    // sqr-function (Sqr(23) = 4.79583152331272), exp-function, log-function,
    // hex-function (Hex(459) = "1CB"), oct-function (Oct(459) = "713").
    { "NumberFunctionsFollowVbaRounding",
      {
          { "Abs(-50.3)", "50.3" },
          { "Abs(Null)", "Null" },
          { "Int(99.8)", "99" },
          { "Fix(99.2)", "99" },
          { "Int(-99.8)", "-100" },
          { "Fix(-99.8)", "-99" },
          { "Int(-99.2)", "-100" },
          { "Fix(-99.2)", "-99" },
          { "Round(2.5)", "2" },
          { "Round(3.5)", "4" },
          { "Round(12.55, 1)", "12.6" },
          { "Round(12.65, 1)", "12.6" },
          { "Round(12.75, 1)", "12.8" },
          { "Round(-2.5)", "-2" },
          { "Sgn(12)", "1" },
          { "Sgn(-2.4)", "-1" },
          { "Sgn(0)", "0" },
          { "Sqr(4)", "2" },
          { "Sqr(23)", "4.79583152331272" },
          { "Exp(1)", "2.71828182845905" },
          { "Log(1)", "0" },
          { "Hex(5)", "\"5\"" },
          { "Hex(10)", "\"A\"" },
          { "Hex(459)", "\"1CB\"" },
          { "Hex(-1)", "\"FFFF\"" },
          { "Hex(-40000)", "\"FFFF63C0\"" },
          { "Hex(Null)", "Null" },
          { "Oct(4)", "\"4\"" },
          { "Oct(8)", "\"10\"" },
          { "Oct(459)", "\"713\"" },
      } },
    // val-function: Val("    1615 198th Street N.E.") = 1615198, Val("&HFFFF") = -1 (an
    // Integer); &HFFFFFFFF is the Long -1; beyond 16 bits a Long's value stays positive.
    { "ValReadsRadixPrefixesWithTheirWrapAround",
      {
          { "Val('    1615 198th Street N.E.')", "1615198" },
          { "Val('&HFFFF')", "-1" },
          { "Val('&H7FFF')", "32767" },
          { "Val('&H10000')", "65536" },
          { "Val('&HFFFFFFFF')", "-1" },
          { "Val('&O177777')", "-1" },
          { "Val('&O10')", "8" },
          { "'&HFFFF' + 1", "0" },
          { "' &h1A ' + 11", "37" },
      } },
    // hour-function, minute-function, second-function (#4:35:17 PM#: 16, 35, 17);
    // weekday-function (#February 12, 1969# is a Wednesday: 4; 3 with Monday first);
    // monthname-function, weekdayname-function.
    { "DatePartsOfValues",
      {
          { "Hour(#4:35:17 PM#)", "16" },
          { "Minute(#4:35:17 PM#)", "35" },
          { "Second(#4:35:17 PM#)", "17" },
          { "Hour('4:35:17 PM')", "16" },
          { "Hour(Null)", "Null" },
          { "Weekday(#2/12/1969#)", "4" },
          { "Weekday(#2/12/1969#, 2)", "3" },
          { "Weekday(#2/12/1969#, 0)", "4" },
          { "MonthName(1)", "\"January\"" },
          { "MonthName(2, True)", "\"Feb\"" },
          { "WeekdayName(1)", "\"Sunday\"" },
          { "WeekdayName(1, True, 2)", "\"Mon\"" },
          { "WeekdayName(7, False, 2)", "\"Sunday\"" },
      } },
    // dateserial-function (DateSerial(1969, 2, 12); DateSerial(1990 - 10, 8 - 2, 1 - 1) =
    // 5/31/1980; two-digit years 0-29 are 2000-2029), timeserial-function
    // (TimeSerial(12 - 6, -15, 0) = 5:45:00 AM), datevalue-function, timevalue-function.
    { "DatesAreBuiltAndReadMonthFirst",
      {
          { "DateSerial(1969, 2, 12)", "#02/12/1969#" },
          { "DateSerial(1990 - 10, 8 - 2, 1 - 1)", "#05/31/1980#" },
          { "DateSerial(2003, 13, 1)", "#01/01/2004#" },
          { "DateSerial(99, 1, 1)", "#01/01/1999#" },
          { "DateSerial(5, 1, 1)", "#01/01/2005#" },
          { "TimeSerial(16, 35, 17)", "#16:35:17#" },
          { "TimeSerial(12 - 6, -15, 0)", "#05:45:00#" },
          { "DateValue('February 12, 1969')", "#02/12/1969#" },
          { "DateValue('2/12/1969 4:35:17 PM')", "#02/12/1969#" },
          { "TimeValue('4:35:17 PM')", "#16:35:17#" },
          { "Year(DateValue('31-Jan-95'))", "1995" },
      } },
    // dateadd-function: DateAdd("m", 1, "31-Jan-95") = 28-Feb-95; intervals yyyy q m y d w
    // ww h n s.
    { "DateAddKeepsTheDayWithinTheMonth",
      {
          { "DateAdd('m', 1, '31-Jan-95')", "#02/28/1995#" },
          { "DateAdd('d', 1, #1/31/2003#)", "#02/01/2003#" },
          { "DateAdd('y', -1, #1/1/2003#)", "#12/31/2002#" },
          { "DateAdd('w', 3, #1/1/2003#)", "#01/04/2003#" },
          { "DateAdd('ww', 2, #1/1/2003#)", "#01/15/2003#" },
          { "DateAdd('yyyy', 1, #2/29/2004#)", "#02/28/2005#" },
          { "DateAdd('q', 1, #11/15/2003#)", "#02/15/2004#" },
          { "DateAdd('h', 25, #1/1/2003#)", "#01/02/2003 01:00:00#" },
          { "DateAdd('n', -1, #1/1/2003#)", "#12/31/2002 23:59:00#" },
          { "DateAdd('s', 90, #1/1/2003 10:00:00 AM#)", "#01/01/2003 10:01:30#" },
          { "DateAdd('d', 1, Null)", "Null" },
      } },
    // datediff-function: from Dec 31 to Jan 1 of the next year "yyyy" gives 1; "w" counts
    // whole weeks, "ww" the first days of a week (Sundays) crossed; a later date1 gives a
    // negative number.
    { "DateDiffCountsBoundaries",
      {
          { "DateDiff('yyyy', #12/31/2003#, #1/1/2004#)", "1" },
          { "DateDiff('d', #1/1/2003#, #3/1/2003#)", "59" },
          { "DateDiff('d', #1/2/2003#, #1/1/2003#)", "-1" },
          { "DateDiff('m', #1/31/2003#, #2/1/2003#)", "1" },
          { "DateDiff('q', #3/31/2003#, #4/1/2003#)", "1" },
          { "DateDiff('w', #1/1/2003#, #1/20/2003#)", "2" },
          { "DateDiff('ww', #1/1/2003#, #1/20/2003#)", "3" },
          { "DateDiff('ww', #1/1/2003#, #1/20/2003#, 2)", "3" },
          { "DateDiff('h', #1/1/2003 1:59:00 AM#, #1/1/2003 2:01:00 AM#)", "1" },
          { "DateDiff('n', #1/1/2003 1:59:59 AM#, #1/1/2003 2:00:00 AM#)", "1" },
          { "DateDiff('s', #1/1/2003#, #1/1/2003 0:01:00#)", "60" },
          { "DateDiff('d', Null, #1/1/2003#)", "Null" },
      } },
    // datepart-function: intervals yyyy q m y d w ww h n s; ww with firstweekofyear 1 (the
    // week of January 1, default), 2 (first four-day week), 3 (first full week).
    { "DatePartReadsEveryInterval",
      {
          { "DatePart('yyyy', #2/12/1969#)", "1969" },
          { "DatePart('q', #2/12/1969#)", "1" },
          { "DatePart('m', #2/12/1969#)", "2" },
          { "DatePart('y', #2/12/1969#)", "43" },
          { "DatePart('d', #2/12/1969#)", "12" },
          { "DatePart('w', #2/12/1969#)", "4" },
          { "DatePart('ww', #2/12/1969#)", "7" },
          { "DatePart('ww', #1/1/2005#)", "1" },
          { "DatePart('ww', #1/1/2005#, 1, 2)", "52" },
          { "DatePart('ww', #1/3/2005#, 1, 3)", "1" },
          { "DatePart('h', #2/12/1969 4:35:17 PM#)", "16" },
          { "DatePart('n', #2/12/1969 4:35:17 PM#)", "35" },
          { "DatePart('s', #2/12/1969 4:35:17 PM#)", "17" },
          { "DatePart('YYYY', Null)", "Null" },
      } },
    // plus-operator ("34" + 6 = 40, "34" + "6" = "346"), caret-operator and
    // operator-precedence (negation binds below ^: -2 ^ 2 = -4; ^ is left-associative),
    // mod-operator and backslash-operator (operands rounded first), eqv-operator,
    // imp-operator and xor-operator truth tables, between-and-operator and in-operator
    // (Access SQL reference; Between accepts its bounds in either order).
    { "OperatorsFollowTheDialect",
      {
          { "'34' + 6", "40" },
          { "'34' + '6'", "\"346\"" },
          { "6 + '34'", "40" },
          { "-2 ^ 2", "-4" },
          { "2 ^ 3 ^ 2", "64" },
          { "2 ^ -1", "0.5" },
          { "19 Mod 6.7", "5" },
          { "-7 Mod 3", "-1" },
          { "11 \\ 4", "2" },
          { "-7 \\ 2", "-3" },
          { "True Eqv True", "True" },
          { "True Eqv False", "False" },
          { "True Imp False", "False" },
          { "False Imp Null", "True" },
          { "Null Imp True", "True" },
          { "True Xor True", "False" },
          { "True Xor False", "True" },
          { "Null Is Null", "True" },
          { "'a' Is Not Null", "True" },
          { "5 In (1, 5, 9)", "True" },
          { "5 Not In (1, 9)", "True" },
          { "'b' Between 'c' And 'a'", "True" },
          { "12 Between 1 And 10", "False" },
      } },
    // type-conversion-functions (CStr of a Date: the short date, the time, or both).
    { "TimesAloneAndDatesWithTimesPrintAsCStrDoes",
      {
          { "CStr(#7:00:00 AM#)", "\"7:00:00 AM\"" },
          { "CStr(#1/2/2003 1:10:00 PM#)", "\"1/2/2003 1:10:00 PM\"" },
          { "CStr(#1/2/2003#)", "\"1/2/2003\"" },
          { "TimeSerial(7, 0, 0)", "#07:00:00#" },
          { "#7:00:00 AM# & ''", "\"7:00:00 AM\"" },
          { "#1/2/2003 1:10:00 PM# & ''", "\"1/2/2003 1:10:00 PM\"" },
          // Dates that functions return stay dates for the next function, on SQLite too.
          { "CStr(DateAdd('d', 1, #1/1/2003#))", "\"1/2/2003\"" },
          { "DateSerial(2003, 1, 2) & ''", "\"1/2/2003\"" },
          { "CStr(TimeSerial(7, 30, 0))", "\"7:30:00 AM\"" },
          { "Format(DateSerial(2003, 1, 2))", "\"1/2/2003\"" },
          { "VarType(DateSerial(2003, 1, 2))", "7" },
          { "DateAdd('h', 1, DateSerial(2003, 1, 2)) & ''", "\"1/2/2003 1:00:00 AM\"" },
      } },
};

} // namespace

class JetFunctionsContract : public ::testing::TestWithParam<CaseGroup>
{
};

TEST_P(JetFunctionsContract, GivesTheDocumentedValueBothWays)
{
    expectBothWays(GetParam().cases);
}

INSTANTIATE_TEST_SUITE_P(Functions, JetFunctionsContract, ::testing::ValuesIn(kGroups), groupName);

// A number with a text that is no number: VBA raises Type mismatch (error 13) and Jet
// "Data type mismatch in criteria expression"; the engine does the same on either side
// rather than concatenating as some reimplementations do.
TEST(JetFunctionErrors, ErrorsNameTheFunctionAndThePosition)
{
    expectErrorBothWays({
        { "1 + S", Status::Code::TypeMismatch, "'Boston'" },
        { "S + 1", Status::Code::TypeMismatch, "'Boston'" },
        { "CDate(S)", Status::Code::TypeMismatch, "CDate at position 1" },
        { "N + CByte(N * 100)", Status::Code::InvalidArgument, "overflow in CByte at position 5" },
        { "DateAdd('x', 1, D)", Status::Code::InvalidArgument, "DateAdd at position 1" },
        { "  DateDiff('d', S, D)", Status::Code::TypeMismatch,
          "argument 2 of DateDiff at position 3" },
        { "Mid(S, 0)", Status::Code::InvalidArgument, "Mid at position 1" },
        { "Left(S, 'x')", Status::Code::TypeMismatch, "in Left at position 1" },
        { "Space(N - 20)", Status::Code::InvalidArgument, "Space at position 1" },
        { "String(N * 1E6, 'x')", Status::Code::InvalidArgument, "String at position 1" },
        { "StrReverse(Z)", Status::Code::TypeMismatch,
          "invalid use of Null in StrReverse at position 1" },
        { "Hex(N * 1E10)", Status::Code::InvalidArgument, "overflow in Hex at position 1" },
        { "Switch(N > 1, 'a', S)", Status::Code::InvalidArgument, "Switch at position 1" },
        { "Nz(S, 1, 2)", Status::Code::Syntax,
          "wrong number of arguments (3) for NZ at position 1" },
        { "NoSuchFunction(S)", Status::Code::UnknownFunction, "'NoSuchFunction' at position 1" },
        { "S Like 'a[bc'", Status::Code::Syntax, "unclosed '['" },
    });
}
