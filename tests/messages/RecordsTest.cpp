#include <map>

#include "messages/GlobalOptions.h"
#include "tests/messages/MessageTest.h"
#include "tests/messages/RecordTable.h"

namespace Messages::Tests {
namespace {

// Runs the same tests on every record of texts and integers.
class RecordsTest : public MessageTest, public ::testing::WithParamInterface<ExpectedRecord> {
 protected:
  using Members = std::map<std::string, std::string>;  // name and JSON text

  // A different value for each field.
  static std::string GoodValue(std::size_t index) { return std::to_string(100 + index); }
  static std::string GoodJson(const ExpectedField& field, std::size_t index) {
    return field.capacity != 0 ? "\"" + GoodValue(index) + "\"" : GoodValue(index);
  }
  static std::string EmptyValue(const ExpectedField& field) {
    return field.capacity != 0 ? "" : "0";
  }

  const std::vector<ExpectedField>& Fields() const { return GetParam().fields; }

  Members WholeBody() const {
    Members members;
    for (std::size_t i = 0; i < Fields().size(); ++i) {
      members[Fields()[i].name] = GoodJson(Fields()[i], i);
    }
    return members;
  }

  std::vector<std::string> WholeValues() const {
    std::vector<std::string> values;
    for (std::size_t i = 0; i < Fields().size(); ++i) values.push_back(GoodValue(i));
    return values;
  }

  static std::string Json(const Members& members) {
    std::string text;
    for (const auto& [name, value] : members) {
      text += (text.empty() ? "\"" : ",\"") + name + "\":" + value;
    }
    return "{" + text + "}";
  }

  ExpectedRecord::Outcome Decode(const Members& members) const {
    return GetParam().decode(*ParseObject(Json(members)));
  }

  static std::string NotFound(const ExpectedField& field) {
    return (field.capacity != 0 ? "GetStrProperty: Property '" : "GetIntProperty: Property '") +
           field.name + "' not found";
  }
  static std::string WrongKind(const ExpectedField& field) {
    return field.capacity != 0 ? "GetStrProperty: Property '" + field.name +
                                     "' was expected to be a string (but it is not)"
                               : "GetIntProperty: Property '" + field.name +
                                     "' was expected to be an int (but it is not)";
  }

  // Checks the outcome of one faulty field in an otherwise good body, for a strict
  // record or a partial update.
  void ExpectFault(std::size_t index, const ExpectedRecord::Outcome& outcome,
                   const std::string& report) {
    const std::string name = Fields()[index].name;
    std::vector<std::string> values = WholeValues();
    values[index] = EmptyValue(Fields()[index]);
    if (!GetParam().partial) {
      for (std::size_t i = index; i < values.size(); ++i) values[i] = EmptyValue(Fields()[i]);
    }
    EXPECT_EQ(GetParam().partial, outcome.decoded) << name;
    EXPECT_EQ(values, outcome.values) << name;
    EXPECT_EQ(report.empty() ? Texts{} : Texts{report}, Reports()) << name;
  }
};

TEST_P(RecordsTest, NewRecordIsEmpty) {
  std::vector<std::string> empty;
  for (const ExpectedField& field : Fields()) empty.push_back(EmptyValue(field));
  EXPECT_EQ(empty, GetParam().initial);
}

TEST_P(RecordsTest, WholeBodyFillsEveryField) {
  const ExpectedRecord::Outcome outcome = Decode(WholeBody());
  EXPECT_TRUE(outcome.decoded);
  EXPECT_EQ(WholeValues(), outcome.values);
  EXPECT_EQ(Texts{}, Reports());
}

TEST_P(RecordsTest, OtherMembersAreIgnored) {
  Members members = WholeBody();
  members["unexpected"] = R"({"deep":[1,{}]})";
  EXPECT_TRUE(Decode(members).decoded);
  EXPECT_EQ(Texts{}, Reports());
}

TEST_P(RecordsTest, EachMissingFieldInTurn) {
  for (std::size_t i = 0; i < Fields().size(); ++i) {
    Members members = WholeBody();
    members.erase(Fields()[i].name);
    ExpectFault(i, Decode(members), GetParam().partial ? "" : NotFound(Fields()[i]));
  }
}

TEST_P(RecordsTest, EachFieldOfTheWrongKindInTurn) {
  for (std::size_t i = 0; i < Fields().size(); ++i) {
    const std::string otherKind = Fields()[i].capacity != 0 ? "5" : "\"5\"";
    for (const std::string& wrong : {otherKind, std::string("2.5"), std::string("null"),
                                     std::string("true"), std::string("{}"), std::string("[]")}) {
      Members members = WholeBody();
      members[Fields()[i].name] = wrong;
      ExpectFault(i, Decode(members), WrongKind(Fields()[i]));
    }
  }
}

TEST_P(RecordsTest, EachTextAtItsCapacityAndOneOver) {
  for (std::size_t i = 0; i < Fields().size(); ++i) {
    const unsigned capacity = Fields()[i].capacity;
    if (capacity == 0) continue;
    Members members = WholeBody();
    const std::string full(capacity, 'x');
    members[Fields()[i].name] = "\"" + full + "\"";
    const ExpectedRecord::Outcome outcome = Decode(members);
    EXPECT_TRUE(outcome.decoded) << Fields()[i].name;
    EXPECT_EQ(full, outcome.values[i]) << Fields()[i].name;
    EXPECT_EQ(Texts{}, Reports()) << Fields()[i].name;

    members[Fields()[i].name] = "\"" + full + "x\"";
    ExpectFault(i, Decode(members),
                "GetStrProperty: Property '" + Fields()[i].name + "' exceeds the max length of " +
                    std::to_string(capacity) + ". It is " + std::to_string(capacity + 1) +
                    " bytes.");
  }
}

TEST_P(RecordsTest, EachLimitedIntegerAtItsBoundsAndOneBeyond) {
  for (std::size_t i = 0; i < Fields().size(); ++i) {
    if (!Fields()[i].limited) continue;
    const auto decode = [&](const char* value) {
      Members members = WholeBody();
      members[Fields()[i].name] = value;
      return Decode(members);
    };
    const std::string start = "DecodeStruct_" + GetParam().name + ": m_" + Fields()[i].name;
    for (const char* bound : {"0", "1024"}) {
      EXPECT_TRUE(decode(bound).decoded) << Fields()[i].name;
      EXPECT_EQ(bound, decode(bound).values[i]) << Fields()[i].name;
    }
    EXPECT_EQ(Texts{}, Reports());
    EXPECT_FALSE(decode("-1").decoded);
    EXPECT_EQ(Texts{start + " expected to be greater than 0. It is -1."}, Reports());
    EXPECT_FALSE(decode("1025").decoded);
    EXPECT_EQ(Texts{start + " expected to be less than 1024. It is 1025."}, Reports());
  }
}

TEST_P(RecordsTest, IntegersWithoutLimitsTakeEveryValue) {
  for (std::size_t i = 0; i < Fields().size(); ++i) {
    if (Fields()[i].capacity != 0 || Fields()[i].limited) continue;
    for (const char* value : {"-2147483648", "-1", "2147483647"}) {
      Members members = WholeBody();
      members[Fields()[i].name] = value;
      const ExpectedRecord::Outcome outcome = Decode(members);
      EXPECT_TRUE(outcome.decoded) << Fields()[i].name;
      EXPECT_EQ(value, outcome.values[i]) << Fields()[i].name;
    }
  }
}

TEST_P(RecordsTest, FirstOfTwoFaultsInFieldOrderCounts) {
  for (std::size_t first = 0; first < Fields().size(); ++first) {
    for (std::size_t second = first + 1; second < Fields().size(); ++second) {
      Members members = WholeBody();
      members[Fields()[first].name] = "null";
      members[Fields()[second].name] = "null";
      EXPECT_EQ(GetParam().partial, Decode(members).decoded);
      const Texts both = {WrongKind(Fields()[first]), WrongKind(Fields()[second])};
      EXPECT_EQ(GetParam().partial ? both : Texts{both[0]}, Reports())
          << Fields()[first].name << " and " << Fields()[second].name;
    }
  }
}

TEST_P(RecordsTest, FieldsAreFoundInAnyLetterCase) {
  Members members;
  for (std::size_t i = 0; i < Fields().size(); ++i) {
    std::string name = Fields()[i].name;
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    members[name] = GoodJson(Fields()[i], i);
  }
  EXPECT_EQ(WholeValues(), Decode(members).values);
}

TEST_P(RecordsTest, SubsetsOfEverySizeDecodeForPartialUpdatesOnly) {
  for (std::size_t size = 0; size <= Fields().size(); ++size) {
    // A window with another start for each size, so that the fields differ.
    Members members;
    std::vector<std::string> values;
    for (const ExpectedField& field : Fields()) values.push_back(EmptyValue(field));
    for (std::size_t k = 0; k < size; ++k) {
      const std::size_t i = (size * 7 + k) % Fields().size();
      members[Fields()[i].name] = GoodJson(Fields()[i], i);
      values[i] = GoodValue(i);
    }
    const bool whole = size == Fields().size();
    const ExpectedRecord::Outcome outcome = Decode(members);
    EXPECT_EQ(GetParam().partial || whole, outcome.decoded) << size;
    if (GetParam().partial || whole) {
      EXPECT_EQ(values, outcome.values) << size;
      EXPECT_EQ(Texts{}, Reports()) << size;
    } else {
      EXPECT_EQ(1u, Reports().size()) << size;
    }
  }
}

using PartialUpdatesTest = MessageTest;

TEST_F(PartialUpdatesTest, UpdateOfOnePortLeavesEverythingElseEmpty) {
  UpdateGlobalOptions options;
  EXPECT_TRUE(DecodeStruct_UpdateGlobalOptions(*ParseObject(R"({"httpport":8080})"), options));
  EXPECT_EQ(8080, options.m_httpport);
  for (const char* text : {options.m_adminpass, options.m_adminuser, options.m_fromemail,
                           options.m_fromname, options.m_notifyemail, options.m_smtpusername,
                           options.m_smtppassword, options.m_smtpserver}) {
    EXPECT_STREQ("", text);
  }
  for (const std::int32_t number :
       {options.m_reconnecttimeout, options.m_emailonerror, options.m_httpsport,
        options.m_smtpserverport, options.m_streamserverport, options.m_usessl,
        options.m_waitintervalsec}) {
    EXPECT_EQ(0, number);
  }
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PartialUpdatesTest, PortOfTheWrongKindIsReportedAndStaysZero) {
  UpdateGlobalOptions options;
  EXPECT_TRUE(DecodeStruct_UpdateGlobalOptions(*ParseObject(R"({"httpport":"8080"})"), options));
  EXPECT_EQ(0, options.m_httpport);
  EXPECT_EQ(Texts{"GetIntProperty: Property 'httpport' was expected to be an int (but it is not)"},
            Reports());
}

INSTANTIATE_TEST_SUITE_P(Messages, RecordsTest, ::testing::ValuesIn(FlatRecords()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace Messages::Tests
