#include "core/status.h"

#include <thread>

#include "core/agp_vars.h"
#include "core/generation_error.h"
#include "platform/progress_sink.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class RecordingProgress : public ProgressSink {
 public:
  void open(StatusForm form, std::string_view caption) override {
    events.push_back("open " + std::to_string(static_cast<int>(form)) + " " + std::string(caption));
  }
  void setInfo(std::string_view text) override { events.push_back("info " + std::string(text)); }
  void setPercent(int percent) override { events.push_back("percent " + std::to_string(percent)); }
  bool isCancelled() override { return cancelled; }
  void close() override { events.push_back("close"); }

  std::vector<std::string> events;
  bool cancelled = false;
};

class StatusTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    AGPVars().progress = sink;
  }
  std::shared_ptr<RecordingProgress> sink = std::make_shared<RecordingProgress>();
};

TEST_F(StatusTest, CallsOnAClosedStatusDoNothing) {
  AGPStatus status;
  status.DispStatus("x");
  status.SetStatus(10);
  status.CloseStatus();
  status.CloseStatus();
  sink->cancelled = true;
  EXPECT_EQ(status.StatusIsCancelled(), 0);
  EXPECT_TRUE(sink->events.empty());
}

TEST_F(StatusTest, AnOpenStatusForwardsToTheSink) {
  AGPStatus status;
  status.ShowStatus3(0, "Generating");
  status.DispStatus("list.cshtml");
  status.SetStatus(Variant(42.5));  // ties round to even
  sink->cancelled = true;
  EXPECT_NE(status.StatusIsCancelled(), 0);
  status.CloseStatus();
  status.CloseStatus();
  EXPECT_EQ(sink->events, (std::vector<std::string>{"open 3 Generating", "info list.cshtml",
                                                    "percent 42", "close"}));
}

TEST_F(StatusTest, RefreshWaitsASecondSinceTheLastProgress) {
  AGPStatus status;
  status.ShowStatus2(0, "Loading");
  status.SetStatus(7);
  status.Refresh();
  EXPECT_EQ(sink->events.size(), 2u) << "within a second nothing is redrawn";
  std::this_thread::sleep_for(std::chrono::milliseconds(1050));
  status.Refresh();
  EXPECT_EQ(sink->events.back(), "percent 7");
}

TEST_F(StatusTest, GuidsAreRegistryFormatted) {
  const std::string guid = Status().GetGUID();
  ASSERT_EQ(guid.size(), 38u);
  EXPECT_EQ(guid.front(), '{');
  EXPECT_EQ(guid[9], '-');
  EXPECT_EQ(guid.find_first_not_of("{}-0123456789ABCDEF"), std::string::npos);
  EXPECT_NE(guid, Status().GetGUID());
}

TEST_F(StatusTest, SystemCodeComesFromTheShippedFiles) {
  const std::string cs = Status().GetSysCode("C#").toText();
  EXPECT_NE(cs.find("function StringBuilder()"), std::string::npos);
  EXPECT_NE(cs.find("var zt_ProgramLanguage = \"C#\";"), std::string::npos);
  EXPECT_NE(cs.find("setupFunction"), std::string::npos) << "the prelude ends it";
  EXPECT_NE(Status().GetSysCode("VBX").toText().find("\"VB\""), std::string::npos)
      << "codes are cut to two characters";
  EXPECT_NE(Status().GetSysCode("VL").toText().find("function zt_ValidateDatabaseLoaded"),
            std::string::npos);
  EXPECT_EQ(Status().GetSysCode("VL").toText().find("StringBuilder"), std::string::npos);
  EXPECT_EQ(Status().GetSysCode("X").toText(), "");
}

TEST_F(StatusTest, RaiseGenerationErrorClosesTheStatusAndCarriesProjErr) {
  Status().ShowStatus3(0, "Generating");
  AGPVars().ProjErr = "Brindlework: broken";
  try {
    RaiseGenerationError();
    FAIL() << "must not return";
  } catch (const GenerationError& e) {
    EXPECT_STREQ(e.what(), "Brindlework: broken");
    EXPECT_EQ(e.number(), -1);
  }
  EXPECT_FALSE(Status().isOpen());
  EXPECT_EQ(sink->events.back(), "close");
}

}  // namespace
}  // namespace bw
