// SPDX-License-Identifier: MIT
#include "devices/AccessoryBatteryReader.h"

#include "devices/Fakes.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

// "id=… name=… category level% [charging] [Left 80% …]", one device after the other.
std::string describe(const std::vector<PowerDevice>& devices) {
    std::string text;
    for (const auto& device : devices) {
        text += (text.empty() ? "" : "; ") + device.id + "=" + device.name + " " +
                std::string(deviceCategories.name(device.category)) + " " + std::to_string(device.level) + "%";
        text += device.isCharging ? " charging" : "";
        for (const auto& part : device.parts) {
            text += " " + std::string(devicePartKinds.name(part.kind)) + ":" + std::to_string(part.level);
            text += part.isCharging ? "+" : "";
        }
    }
    return text;
}

struct Case {
    const char* label;
    const char* sources;      // power sources; "Type" is added where it is missing
    const char* inputDevices; // HID properties
    const char* expected;
};

class AccessoryBatteryReaderTest : public testing::Test {
protected:
    std::string read(const char* list, const char* inputDevices) {
        sources_.list = json::parse(list);
        if (auto* descriptions = sources_.list.array()) {
            for (auto& description : *descriptions) {
                if (auto* dictionary = description.dictionary())
                    dictionary->try_emplace("Type", "Accessory Source");
            }
        }
        registry_.inputDevices = json::parse(inputDevices);
        return describe(reader_.readAccessories());
    }
    void expectAll(const std::vector<Case>& cases) {
        for (const auto& one : cases)
            EXPECT_EQ(read(one.sources, one.inputDevices), one.expected) << one.label;
    }

    fakes::Sources sources_;
    fakes::Registry registry_;
    fakes::Log log_;
    AccessoryBatteryReader reader_{sources_, registry_, log_};
};

TEST_F(AccessoryBatteryReaderTest, groupsSourcesIntoProducts) {
    expectAll({
        {"earbuds and their case",
         R"([{"Group Identifier":"g","Name":"AirPods Pro Case","Part Identifier":"Case","Current Capacity":40,"Is Charging":true},
             {"Group Identifier":"g","Name":"AirPods Pro","Part Identifier":"Left","Current Capacity":75,
              "Combined Parts":[{"Part Identifier":"Right","Current Capacity":75},
                                {"Part Identifier":"Left","Current Capacity":80,"Is Charging":true}]}])",
         "[]", "g=AirPods Pro airpodsPro 75% left:80+ right:75 chargingCase:40+"},
        {"further sources of the group are no parts",
         R"([{"Group Identifier":"g","Name":"AirPods","Part Identifier":"Left","Current Capacity":75},
             {"Group Identifier":"g","Name":"AirPods","Part Identifier":"Right","Current Capacity":70},
             {"Group Identifier":"g","Name":"AirPods Case","Part Identifier":"Case","Current Capacity":40}])",
         "[]", "g=AirPods airpods 75% chargingCase:40"},
        {"only the case: its name is shortened, it is no part of itself",
         R"([{"Group Identifier":"g","Name":"AirPods Case Case","Part Identifier":"Case","Current Capacity":40,
              "Combined Parts":[{"Part Identifier":"Left","Current Capacity":1}]}])",
         "[]", "g=AirPods airpods 40% left:1"},
        {"an accessory that is no case keeps its name",
         R"([{"Name":"Guitar Case Speaker","Current Capacity":3}])", "[]",
         "Guitar Case Speaker=Guitar Case Speaker other 3%"},
        {"a main source without a level hides the group, whatever its case knows",
         R"([{"Group Identifier":"g","Name":"AirPods","Part Identifier":"Left"},
             {"Group Identifier":"g","Name":"AirPods Case","Part Identifier":"Case","Current Capacity":40}])",
         "[]", ""},
        {"a case without a level is no part",
         R"([{"Group Identifier":"g","Name":"AirPods","Current Capacity":9},
             {"Group Identifier":"g","Name":"AirPods Case","Part Identifier":"Case"}])",
         "[]", "g=AirPods airpods 9%"},
        {"the keys of a group in order of preference; other types of a key do not count",
         R"([{"Group Identifier":"g","Accessory Identifier":"a","Name":"N1","Current Capacity":1},
             {"Group Identifier":7,"Accessory Identifier":"a","Name":"N2","Current Capacity":2},
             {"Name":"N3","Current Capacity":3}, {"Current Capacity":4}])",
         "[]", "g=N1 other 1%; a=N2 other 2%; N3=N3 other 3%"},
        {"combined parts: unknown ones are skipped, letter case counts",
         R"([{"Name":"X","Current Capacity":5,
              "Combined Parts":[{"Part Identifier":"left","Current Capacity":1},{"Part Identifier":"Right"},
                                {"Part Identifier":"Case","Current Capacity":2},{"Part Identifier":"Left","Current Capacity":3}]}])",
         "[]", "X=X other 5% left:3 chargingCase:2"},
        {"a list with a stranger in it is no list of parts",
         R"([{"Name":"X","Current Capacity":5,"Combined Parts":[{"Part Identifier":"Left","Current Capacity":1},7]}])",
         "[]", "X=X other 5%"},
    });
}

TEST_F(AccessoryBatteryReaderTest, takesOnlyPresentAccessories) {
    expectAll({
        {"another type", R"([{"Type":"InternalBattery","Name":"X","Current Capacity":5}])", "[]", ""},
        {"a type that is no text", R"([{"Type":1,"Name":"X","Current Capacity":5}])", "[]", ""},
        {"not present", R"([{"Is Present":false,"Name":"X","Current Capacity":5}])", "[]", ""},
        {"presence of another type counts as present", R"([{"Is Present":0,"Name":"X","Current Capacity":5}])",
         "[]", "X=X other 5%"},
        {"sources without a description", R"([null,{"Name":"X","Current Capacity":5},null])", "[]",
         "X=X other 5%"},
        {"no information", "null", "[]", ""},
        {"a name that is no text", R"([{"Group Identifier":"g","Name":1,"Current Capacity":5}])", "[]", ""},
        {"charging of another type", R"([{"Name":"X","Current Capacity":5,"Is Charging":1}])", "[]",
         "X=X other 5%"},
        {"the category text is a hint",
         R"([{"Name":"X","Current Capacity":5,"Accessory Category":"Game Controller"}])", "[]",
         "X=X gamepad 5%"},
        {"a category of another type is none", R"([{"Name":"X","Current Capacity":5,"Accessory Category":1}])",
         "[]", "X=X other 5%"},
    });
}

TEST_F(AccessoryBatteryReaderTest, computesPercentages) {
    struct Row {
        const char* capacity;
        const char* expected;
    };
    for (const Row& row : {
             Row{R"("Current Capacity":45)", "X=X other 45%"},
             {R"("Current Capacity":2,"Max Capacity":3)", "X=X other 66%"},
             {R"("Current Capacity":45,"Max Capacity":"50")", "X=X other 45%"},
             {R"("Current Capacity":45,"Max Capacity":0)", ""},
             {R"("Current Capacity":45,"Max Capacity":-1)", ""},
             {R"("Current Capacity":45.0)", ""},
             {R"("Current Capacity":true)", ""},
             {R"("Current Capacity":-3)", "X=X other 0%"},
             {R"("Current Capacity":101)", "X=X other 100%"},
             {R"("Current Capacity":9223372036854775806,"Max Capacity":9223372036854775807)", "X=X other 99%"},
         }) {
        const auto source = std::string(R"([{"Name":"X",)") + row.capacity + "}]";
        EXPECT_EQ(read(source.c_str(), "[]"), row.expected) << row.capacity;
    }
}

TEST_F(AccessoryBatteryReaderTest, readsInputDevices) {
    expectAll({
        {"identity and charging bit", "[]",
         R"([{"Product":"Magic Mouse","BatteryPercent":30,"DeviceAddress":"aa","BatteryStatusFlags":3},
             {"Product":"Magic Keyboard","BatteryPercent":20,"BatteryStatusFlags":1},
             {"Product":"Pad","BatteryPercent":10,"DeviceAddress":5,"BatteryStatusFlags":2.0}])",
         "Pad=Pad other 10%; Magic Keyboard=Magic Keyboard keyboard 20%; aa=Magic Mouse mouse 30% charging"},
        {"levels stay as they are; anything without level or name is skipped", "[]",
         R"([{"Product":"A","BatteryPercent":130},{"Product":"B","BatteryPercent":-1},{"Product":"C"},
             {"BatteryPercent":5},{"Product":"D","BatteryPercent":5.0},null])",
         "B=B other -1%; A=A other 130%"},
        {"same product twice without addresses", "[]",
         R"([{"Product":"A","BatteryPercent":1},{"Product":"A","BatteryPercent":2}])",
         "A=A other 1%; A=A other 2%"},
        {"one that is a power source too is listed once, as that",
         R"([{"Accessory Identifier":"m","Name":"Magic Mouse","Current Capacity":50}])",
         R"([{"Product":"Magic Mouse","BatteryPercent":49},{"Product":"magic mouse","BatteryPercent":48}])",
         "magic mouse=magic mouse mouse 48%; m=Magic Mouse mouse 50%"},
        {"a source that is no device hides nothing", R"([{"Accessory Identifier":"m","Name":"Magic Mouse"}])",
         R"([{"Product":"Magic Mouse","BatteryPercent":49}])", "Magic Mouse=Magic Mouse mouse 49%"},
        {"equal levels keep power sources first", R"([{"Name":"Z","Current Capacity":7}])",
         R"([{"Product":"A","BatteryPercent":7}])", "Z=Z other 7%; A=A other 7%"},
        {"no registry", R"([{"Name":"Z","Current Capacity":7}])", "null", "Z=Z other 7%"},
    });
}

TEST_F(AccessoryBatteryReaderTest, saysOnceThatAccessoriesCannotBeListed) {
    sources_.isThere = false;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(
            read(R"([{"Name":"X","Current Capacity":5}])", R"([{"Product":"Mouse","BatteryPercent":30}])"),
            "Mouse=Mouse mouse 30%");
    }
    EXPECT_EQ(sources_.resolutions, 1);
    EXPECT_EQ(log_.lines, std::vector<std::string>{"error accessories: IOPSCopyPowerSourcesByType unavailable; "
                                                   "accessory batteries disabled"});
}

} // namespace
} // namespace kivo
