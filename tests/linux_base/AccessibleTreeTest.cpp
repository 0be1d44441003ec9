// SPDX-License-Identifier: MIT
#include "linux/base/AccessibleTree.h"

#include "linux/base/NotificationProcesses.h"
#include "linux/base/ProcessOwners.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <unistd.h>

namespace kivo {
namespace {

using Place = PopUpForm::Place;
using Kind = AccessibleQuestion::Kind;
using Elements = std::vector<std::shared_ptr<AccessibilityElement>>;
constexpr std::uint32_t alert = 2, dialog = 16, filler = 20, frame = 23, icon = 26, label = 29, list = 31,
                        button = 43, entry = 79, notification = 101;

// An application made of objects; those that are not listed are gone.
struct Source : AccessibleSource {
    struct Object {
        std::uint32_t role = filler;
        std::vector<std::string> children;
        std::string name;
        std::vector<std::string> actions;
        bool isShowing = true;
        std::string description, text, image;
        std::vector<std::string> attributes;
    };
    std::map<std::string, Object> objects;
    int questions = 0;
    std::vector<std::string> performed;
    std::function<void(const AccessibleQuestion&)> onQuestion = [](const auto&) {};

    std::vector<std::optional<AccessibleAnswer>> ask(const std::vector<AccessibleQuestion>& asked) override {
        std::vector<std::optional<AccessibleAnswer>> answers;
        for (const auto& question : asked) {
            ++questions;
            onQuestion(question);
            const auto it = objects.find(question.path);
            answers.push_back(it == objects.end() ? std::nullopt
                                                  : std::optional(answer(it->second, question.kind)));
        }
        return answers;
    }
    bool perform(const std::string& path, std::int32_t action) override {
        performed.push_back(path + " " + std::to_string(action));
        return objects.contains(path);
    }
    static AccessibleAnswer answer(const Object& object, Kind kind) {
        switch (kind) {
        case Kind::isShowing:
            return {object.isShowing ? 1U : 0U, {}};
        case Kind::role:
            return {object.role, {}};
        case Kind::children:
            return {0, object.children};
        case Kind::actions:
            return {0, object.actions};
        case Kind::name:
            return {0, {object.name}};
        case Kind::description:
            return {0, {object.description}};
        case Kind::text:
            return {0, {object.text}};
        case Kind::imageDescription:
            return {0, {object.image}};
        case Kind::attributes:
            return {0, object.attributes};
        }
        return {};
    }
};

struct AccessibleTreeTest : testing::Test {
    Elements windows(const PopUpForm& form = {Place::windows, {}}, const AccessibleLimits& limits = {}) {
        root = readAccessibleTree(source, "/root", form, limits);
        return root->elements("AXWindows");
    }
    static std::string text(AccessibilityElement& element, std::string_view attribute) {
        const auto value = element.attribute(attribute);
        return value ? *value->string() : "(none)";
    }
    static std::size_t count(AccessibilityElement& element) {
        std::size_t result = 1;
        for (const auto& child : element.elements("AXChildren"))
            result += count(*child);
        return result;
    }

    std::shared_ptr<Source> source = std::make_shared<Source>();
    std::map<std::string, Source::Object>& objects = source->objects;
    std::shared_ptr<AccessibilityElement> root;
};

using Names = std::vector<std::string>;

TEST_F(AccessibleTreeTest, aPopUpOffersWhatItsButtonsAreCalled) {
    objects = {{"/root", {.children = {"/window"}}},
               {"/window", {.role = frame, .children = {"/dialog", "/other"}}},
               {"/dialog", {.role = dialog, .children = {"/box", "/title"}, .actions = {"raise"}}},
               {"/box", {.children = {"/close", "/dead", "/inner"}}},
               {"/close", {.role = button, .name = "Close", .actions = {"SetFocus", "Press"}}},
               {"/dead", {.role = button, .name = "Later", .actions = {"SetFocus"}}},
               {"/inner", {.role = alert, .children = {"/ok"}}},
               {"/ok", {.role = button, .name = "OK", .actions = {"click"}}},
               {"/title", {.role = label, .name = "Cerrar", .actions = {"click"}}},
               {"/other", {.role = notification, .children = {}}}};
    const auto window = windows().at(0);
    EXPECT_EQ(window->actionNames(), Names()) << "its buttons belong to the pop-ups inside";
    const auto popUp = window->elements("AXChildren").at(0);
    EXPECT_EQ(popUp->actionNames(), (Names{"raise", "Close"}));
    EXPECT_TRUE(popUp->perform("raise"));
    EXPECT_TRUE(popUp->perform("Close"));
    EXPECT_FALSE(popUp->perform("Later")) << "a button that cannot be pressed";
    EXPECT_FALSE(popUp->perform("OK")) << "the inner pop-up's";
    EXPECT_EQ(source->performed, (Names{"/dialog 0", "/close 1"}));
    const auto close = popUp->elements("AXChildren").at(1);
    EXPECT_EQ(close->actionNames(), (Names{"SetFocus", "Press", "Close"}));
    EXPECT_TRUE(window->elements("AXChildren").at(1)->actionNames().empty());
    objects.erase("/close");
    EXPECT_FALSE(popUp->perform("Close")) << "gone since";
}

TEST_F(AccessibleTreeTest, aWindowIsAPopUpOnlyWhereTheProgramShowsOneInEach) {
    const auto close = [] { return Source::Object{.role = button, .name = "Close", .actions = {"click"}}; };
    objects = {{"/root", {.children = {"/one", "/two"}}},
               {"/one", {.role = frame, .children = {"/a"}}},
               {"/a", close()},
               {"/two", {.role = frame, .children = {"/b", "/c", "/d"}}},
               {"/b", close()},
               {"/c", close()},
               {"/d", {.role = button, .name = "Open", .actions = {"click"}}}};
    EXPECT_EQ(windows().at(0)->actionNames(), Names{"Close"});
    EXPECT_EQ(root->elements("AXWindows").at(1)->actionNames(), Names{"Open"})
        << "which of the two would it be?";
    EXPECT_TRUE(windows({}).at(0)->actionNames().empty());
    objects["/two"].role = alert;
    EXPECT_EQ(windows({}).at(1)->actionNames(), (Names{"Close", "Open"})) << "either closes this one";
}

TEST_F(AccessibleTreeTest, aCloseButtonWithAnotherNameIsKnownByTheForm) {
    const auto named = [](const char* name) {
        return Source::Object{.role = button, .name = name, .actions = {"Press"}};
    };
    objects = {{"/root", {.children = {"/window"}}},
               {"/window", {.role = frame, .children = {"/one", "/two"}}},
               {"/one", {.role = filler, .children = {"/x1", "/open"}}},
               {"/x1", named("x")},
               {"/open", named("Open")},
               {"/two", {.role = filler, .children = {"/x2", "/x3"}}},
               {"/x2", named("x")},
               {"/x3", named("x")}};
    const auto boxes = windows({Place::aroundCloseButton, "x"}).at(0)->elements("AXChildren");
    EXPECT_EQ(boxes.at(0)->actionNames(), (Names{"Close", "Open"}));
    EXPECT_TRUE(boxes.at(0)->perform("Close"));
    EXPECT_EQ(source->performed, Names{"/x1 0"});
    EXPECT_TRUE(boxes.at(1)->actionNames().empty()) << "which of the two would it be?";
    EXPECT_TRUE(root->elements("AXWindows").at(0)->actionNames().empty());

    objects = {{"/root", {.children = {"/alert"}}},
               {"/alert", {.role = alert, .children = {"/nameless", "/open"}}},
               {"/nameless", named("")},
               {"/open", named("Open")}};
    EXPECT_EQ(windows({Place::roles, ""}).at(0)->actionNames(), (Names{"Close", "Open"}));
    EXPECT_EQ(windows({Place::roles, {}}).at(0)->actionNames(), Names{"Open"});
}

TEST_F(AccessibleTreeTest, aButtonIsOfferedSoFarUpAndNoFarther) {
    objects = {{"/root", {.children = {"/window"}}}, {"/window", {.role = frame, .children = {"/1"}}}};
    for (int level = 1; level <= 8; ++level)
        objects["/" + std::to_string(level)] = {.role = list, .children = {"/" + std::to_string(level + 1)}};
    const Source::Object close{.role = button, .name = "Close", .actions = {"click"}};
    const Source::Object plain = objects["/5"];
    objects["/5"] = close;
    EXPECT_EQ(windows().at(0)->actionNames(), Names{"Close"});
    objects["/5"] = plain;
    objects["/6"] = close;
    EXPECT_EQ(windows().at(0)->actionNames(), Names());
    objects["/3"].role = filler;
    EXPECT_EQ(windows().at(0)->actionNames(), Names{"Close"}) << "a box takes no level";
}

TEST_F(AccessibleTreeTest, boxesStandBesideWhatTheyHold) {
    objects = {{"/root", {.children = {"/window"}}},
               {"/window", {.role = filler, .children = {"/a", "/last"}}},
               {"/a", {.role = filler, .children = {"/b", "/list"}, .name = "named"}},
               {"/b", {.role = filler, .children = {"/first"}}},
               {"/first", {.role = label, .name = "first"}},
               {"/list", {.role = list, .children = {"/c"}, .name = "list"}},
               {"/c", {.role = filler, .children = {"/item"}, .name = "box"}},
               {"/item", {.role = label, .name = "item"}},
               {"/last", {.role = label, .name = "last"}}};
    const std::function<std::string(AccessibilityElement&)> shape = [&](AccessibilityElement& element) {
        std::string result = element.attribute("AXTitle") ? text(element, "AXTitle") : "-";
        std::string inside;
        for (const auto& child : element.elements("AXChildren"))
            inside += (inside.empty() ? "" : " ") + shape(*child);
        return inside.empty() ? result : result + "(" + inside + ")";
    };
    EXPECT_EQ(shape(*windows().at(0)), "-(named - first list(box item) last)") << "a window is never a box";
}

TEST_F(AccessibleTreeTest, textsComeFromWhereTheyStand) {
    objects = {
        {"/root", {.children = {"/n"}}},
        {"/n", {.role = notification, .children = {"/e", "/l"}, .name = "Power", .description = "Battery"}},
        {"/e", {.role = entry, .text = "Low battery"}},
        {"/l", {.role = label, .name = "10 %", .text = "not read"}}};
    const auto popUp = windows().at(0);
    EXPECT_EQ(text(*popUp, "AXTitle"), "Power");
    EXPECT_EQ(text(*popUp, "AXDescription"), "Battery");
    EXPECT_EQ(text(*popUp, "AXValue"), "(none)");
    EXPECT_EQ(text(*popUp->elements("AXChildren").at(0), "AXValue"), "Low battery");
    EXPECT_EQ(text(*popUp->elements("AXChildren").at(1), "AXValue"), "(none)");
    EXPECT_EQ(text(*popUp, "AXPosition"), "(none)");
    objects.clear();
    EXPECT_EQ(text(*popUp, "AXTitle"), "(none)") << "gone since";
}

TEST_F(AccessibleTreeTest, iconsAndCategoriesTellWhatTitlesWould) {
    const auto described = [&](std::uint32_t role, Source::Object object) {
        object.role = role;
        objects = {{"/root", {.children = {"/x"}}}, {"/x", std::move(object)}};
        return text(*windows().at(0), "AXDescription");
    };
    EXPECT_EQ(described(icon, {.image = "battery-caution-symbolic"}), "low battery");
    EXPECT_EQ(described(icon, {.name = "battery-level-10-symbolic", .description = "Akku"}),
              "Akku low battery");
    EXPECT_EQ(described(icon, {.attributes = {"toolkit", "x", "icon-name", "battery-low"}}), "low battery");
    EXPECT_EQ(described(notification, {.attributes = {"category", "device.battery.low"}}), "low battery");
    EXPECT_EQ(described(notification, {.attributes = {"title", "battery-low"}}), "(none)");
    EXPECT_EQ(described(label, {.name = "battery-low"}), "(none)") << "a title that looks like a name";
}

TEST(NamesLowBattery, KnowsIconsAndCategories) {
    struct Row {
        const char* name;
        bool isLow;
    };
    const Row rows[] = {{"battery-caution", true},
                        {"battery-empty-symbolic", true},
                        {"/usr/share/icons/Some/status/16/battery-low.svg", true},
                        {"/usr/share/icons/Some/status/16/battery-080.svg", false},
                        {"battery-020", true},
                        {"battery-level-30-symbolic", false},
                        {"battery-low-charging", false},
                        {"battery-level-0-charging-symbolic", false},
                        {"device.battery.critical", true},
                        {"battery", false},
                        {"network-cellular-signal-low", false},
                        {"Battery-free low fares", false},
                        {"", false}};
    for (const auto& row : rows)
        EXPECT_EQ(namesLowBattery(row.name), row.isLow) << row.name;
}

TEST_F(AccessibleTreeTest, whatIsHiddenOrGoneIsNotThere) {
    objects = {{"/root", {.children = {"/hidden", "/gone", "/shown"}}},
               {"/hidden", {.role = dialog, .children = {"/inside"}, .isShowing = false}},
               {"/inside", {.role = dialog}},
               {"/shown", {.role = dialog, .children = {"/vanishing", "/stays"}}},
               {"/vanishing", {.role = button, .children = {"/below"}, .name = "Close", .actions = {"click"}}},
               {"/below", {}},
               {"/stays", {.role = label}}};
    // It is taken away between two questions about it.
    source->onQuestion = [&](const AccessibleQuestion& question) {
        if (question.path == "/vanishing" && question.kind == Kind::role)
            objects.erase("/vanishing");
    };
    ASSERT_EQ(windows().size(), 1u);
    EXPECT_EQ(count(*root->elements("AXWindows").at(0)), 3u);
    EXPECT_TRUE(root->elements("AXWindows").at(0)->actionNames().empty());
}

TEST_F(AccessibleTreeTest, cyclesAndSharedObjectsAreATreeOfEachOnce) {
    Names all;
    for (int i = 0; i < 40; ++i)
        all.push_back("/" + std::to_string(i));
    for (const auto& path : all)
        objects[path] = {.role = filler, .children = all};
    for (auto& [path, object] : objects)
        object.children.push_back("/root");
    objects["/root"] = {.children = {"/0", "/1", "/0"}};
    ASSERT_EQ(windows().size(), 2u);
    EXPECT_EQ(count(*root->elements("AXWindows").at(0)) + count(*root->elements("AXWindows").at(1)), 40u);
    EXPECT_LT(source->questions, 40 * 4);
}

TEST_F(AccessibleTreeTest, aHugeTreeIsReadNearTheWindowsFirst) {
    // A list of ten thousand, a chain of a thousand levels, and a pop-up beside them.
    objects = {{"/root", {.children = {"/window"}}},
               {"/window", {.role = frame, .children = {"/list", "/deep0", "/box"}}},
               {"/box", {.children = {"/popUp"}}},
               {"/popUp", {.role = alert, .children = {"/close"}}},
               {"/close", {.role = button, .name = "Close", .actions = {"click"}}}};
    objects["/list"].role = list;
    for (int i = 0; i < 10000; ++i) {
        const std::string path = "/item" + std::to_string(i);
        objects["/list"].children.push_back(path);
        objects[path] = {.children = {"/more" + std::to_string(i)}};
        objects["/more" + std::to_string(i)] = {};
    }
    for (int i = 0; i < 1000; ++i)
        objects["/deep" + std::to_string(i)] = {.role = list, .children = {"/deep" + std::to_string(i + 1)}};
    const auto popUp = windows({}).at(0)->elements("AXChildren").at(3);
    EXPECT_EQ(popUp->actionNames(), Names{"Close"});
    EXPECT_LT(source->questions, 2000 * 4);
    EXPECT_LE(count(*root->elements("AXWindows").at(0)), 3u + 2 * 256 + 40 + 3);

    source->questions = 0;
    EXPECT_EQ(windows({}, {.elements = 20}).size(), 1u);
    EXPECT_LE(source->questions, 20 * 4);
}

TEST(NotificationProcesses, areKnownByTheirProgram) {
    EXPECT_EQ(notificationProcess("xfce4-notifyd")->form.place, Place::windows);
    EXPECT_FALSE(notificationProcess("gnome-shell-calendar"));
    EXPECT_FALSE(notificationProcess(""));
    EXPECT_EQ(programOfProcess(getpid()), "kivo_linux_base_tests");
    EXPECT_EQ(programOfProcess(0), "");
}

} // namespace
} // namespace kivo
