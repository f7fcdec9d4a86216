#include <gtest/gtest.h>

#include <string>

#include "base/PropertyList.h"

namespace lumenary {
namespace {

std::string list(const std::string& value) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">)" +
         value + "</plist>\n";
}

TEST(PropertyList, ReadsEveryKindOfValue) {
  const auto value = parsePropertyList(list(R"(<!-- an agent -->
<dict>
  <key>Label</key> <string>a &lt;b&gt; &#x263A; <![CDATA[<&>]]></string>
  <key>Program</key> <string/>
  <key>Disabled</key> <true/>
  <key>Interval</key> <integer> -3600 </integer>
  <key>Arguments</key> <array><string>one</string><dict></dict></array>
</dict>)"));
  ASSERT_TRUE(value && value->dictionary());
  const auto& agent = *value->dictionary();
  EXPECT_EQ(*valueAt(agent, "Label")->text(), "a <b> \u263A <&>");
  EXPECT_EQ(*valueAt(agent, "Program")->text(), "");
  EXPECT_TRUE(*valueAt(agent, "Disabled")->boolean());
  EXPECT_EQ(*valueAt(agent, "Interval")->integer(), -3600);
  ASSERT_EQ(valueAt(agent, "Arguments")->array()->size(), 2U);
  EXPECT_TRUE(valueAt(agent, "Arguments")->array()->back().dictionary());
  EXPECT_EQ(valueAt(agent, "Missing"), nullptr);
}

TEST(PropertyList, RefusesWhatIsMalformed) {
  std::string deep;
  for (int level = 0; level < 100'000; ++level) {
    deep += "<array>";
  }
  for (const std::string& text :
       {std::string(), std::string("bplist00\x01\x02"), std::string("<plist><true/>"), list(""), list("<true/><true/>"),
        list("<dict><string>x</string></dict>"), list("<dict><key>x</key></dict>"), list("<array><true/></dict>"),
        list("<string>&unknown;</string>"), list("<string>&#xD800;</string>"), list("<string>\xff</string>"),
        list("<integer>1x</integer>"), list("<integer>99999999999999999999</integer>"), list("<other/>"), list("stray"),
        list("<string>no end"), list(deep), list("<true/>") + "more",
        std::string(R"(<!DOCTYPE plist [<!ENTITY a "b">]><plist><true/></plist>)")}) {
    EXPECT_FALSE(parsePropertyList(text)) << text.substr(0, 300);
  }
}

}  // namespace
}  // namespace lumenary
