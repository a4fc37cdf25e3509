// SPDX-License-Identifier: MIT
// Items taken away from their names before they are removed.
#include "migration/SetAside.h"

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;
using detail::ItemPlace;

namespace {

class SetAsideTest : public ::testing::Test {
protected:
    ItemPlace placeOf(const std::string& name) const {
        ItemPlace place;
        EXPECT_TRUE(place.open(folder / name));
        return place;
    }
    static struct stat itemAt(const ItemPlace& place) {
        struct stat item {};
        EXPECT_TRUE(place.look(item));
        return item;
    }
    /// All names but that of a gone item, which is random.
    std::string names() const {
        std::string all;
        for (const auto& [name, what] : folder.digest("", Detail::contents)) {
            all += name.empty() ? "" : name.rfind(".zq-gone.", 0) == 0 ? "gone " : name + " ";
        }
        return all;
    }

    MigrationFolder folder;
};

} // namespace

TEST_F(SetAsideTest, takesAnItemAwayAndGivesItsNameBack) {
    folder.write("a.txt", "x");
    const ItemPlace place = placeOf("a.txt");
    for (const bool isPutBack : {true, false}) {
        {
            detail::SetAside aside(place);
            EXPECT_TRUE(aside.take(itemAt(place)));
            EXPECT_EQ(names(), ".zq-aside.a.txt ");
            if (isPutBack) {
                EXPECT_TRUE(aside.putBack());
                EXPECT_EQ(names(), "a.txt ");
            }
        }
        EXPECT_EQ(names(), "a.txt ") << "however the scope is left";
    }
}

TEST_F(SetAsideTest, leavesAnotherItemWhereItIs) {
    folder.writeFiles({"a", "b"});
    const ItemPlace place = placeOf("a");
    detail::SetAside aside(place);
    EXPECT_FALSE(aside.take(itemAt(placeOf("b"))));
    EXPECT_EQ(errno, ESTALE);
    EXPECT_EQ(names(), "a b ");
    ItemPlace root;
    ASSERT_TRUE(root.open("/"));
    detail::SetAside nameless(root);
    EXPECT_FALSE(nameless.take(itemAt(root)));
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(SetAsideTest, keepsBothWhenTheNameWasTakenMeanwhile) {
    folder.write("a.txt", "old");
    const ItemPlace place = placeOf("a.txt");
    detail::SetAside aside(place);
    ASSERT_TRUE(aside.take(itemAt(place)));
    folder.write("a.txt", "new");
    EXPECT_TRUE(aside.putBack());
    EXPECT_EQ(names(), "a 1.txt a.txt ");
    EXPECT_EQ(folder.contents("a.txt") + folder.contents("a 1.txt"), "newold");
}

TEST_F(SetAsideTest, givesATreeUpByASecondName) {
    for (const std::string& name : {std::string("tree"), std::string(255, 'n')}) {
        folder.makeFolder(name);
        const ItemPlace place = placeOf(name);
        {
            detail::SetAside aside(place);
            ASSERT_TRUE(aside.take(itemAt(place)));
            ASSERT_TRUE(aside.giveUp());
            EXPECT_EQ(std::string(aside.name()).substr(0, 9), ".zq-gone.");
        }
        EXPECT_EQ(names(), name == "tree" ? "gone " : "gone gone ");
    }
}

TEST_F(SetAsideTest, usesAFolderForNamesThatAreLong) {
    for (const std::string& name : {std::string(246, 'n'), std::string(255, 'n')}) {
        folder.write(name, "x");
        const ItemPlace place = placeOf(name);
        {
            detail::SetAside aside(place);
            ASSERT_TRUE(aside.take(itemAt(place)));
            EXPECT_EQ(names().substr(0, 11), ".zq-asides.");
            EXPECT_EQ(aside.name(), name);
        }
        EXPECT_EQ(names(), name + " ");
        detail::SetAside aside(place);
        ASSERT_TRUE(aside.take(itemAt(place)));
        EXPECT_TRUE(aside.removeFile());
        EXPECT_EQ(names(), "");
    }
}
