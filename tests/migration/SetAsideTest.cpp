// SPDX-License-Identifier: MIT
// Items taken away from their names before they are removed.
#include "migration/SetAside.h"

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using detail::ItemPlace;
using detail::SetAside;
using scene::Digest;

namespace {

class SetAsideTest : public ::testing::Test {
protected:
    ItemPlace placeOf(const std::string& name) const {
        ItemPlace place;
        EXPECT_TRUE(place.open(scene::bytesOf(folder / name)));
        return place;
    }
    static struct stat itemAt(const ItemPlace& place) {
        struct stat item {};
        EXPECT_TRUE(place.look(item));
        return item;
    }
    std::string names() const {
        std::string all;
        for (const auto& [name, what] : folder.digest("", scene::Detail::contents)) {
            all += name.empty() ? "" : name + " ";
        }
        return all;
    }

    scene::MigrationFolder folder;
};

} // namespace

TEST_F(SetAsideTest, takesAnItemAwayAndGivesItsNameBack) {
    folder.file("a.txt", "x");
    const ItemPlace place = placeOf("a.txt");
    {
        SetAside aside(place);
        EXPECT_TRUE(aside.take(itemAt(place)));
        EXPECT_EQ(names(), ".zq-aside.a.txt ");
        EXPECT_TRUE(aside.putBack());
        EXPECT_EQ(names(), "a.txt ");
    }
    EXPECT_EQ(names(), "a.txt ");
    {
        SetAside aside(place);
        EXPECT_TRUE(aside.take(itemAt(place)));
    }
    EXPECT_EQ(names(), "a.txt ") << "however the scope is left";
}

TEST_F(SetAsideTest, leavesAnotherItemWhereItIs) {
    folder.file("a", "1");
    folder.file("b", "2");
    const ItemPlace place = placeOf("a");
    SetAside aside(place);
    EXPECT_FALSE(aside.take(itemAt(placeOf("b"))));
    EXPECT_EQ(errno, ESTALE);
    EXPECT_EQ(names(), "a b ");
}

TEST_F(SetAsideTest, keepsBothWhenTheNameWasTakenMeanwhile) {
    folder.file("a.txt", "old");
    const ItemPlace place = placeOf("a.txt");
    SetAside aside(place);
    ASSERT_TRUE(aside.take(itemAt(place)));
    folder.file("a.txt", "new");
    EXPECT_TRUE(aside.putBack());
    EXPECT_EQ(names(), "a 1.txt a.txt ");
    EXPECT_EQ(scene::contentsOf(folder / "a.txt"), "new");
    EXPECT_EQ(scene::contentsOf(folder / "a 1.txt"), "old");
}

TEST_F(SetAsideTest, givesATreeUpByASecondName) {
    folder.file("tree/a", "x");
    const ItemPlace place = placeOf("tree");
    {
        SetAside aside(place);
        ASSERT_TRUE(aside.take(itemAt(place)));
        ASSERT_TRUE(aside.giveUp());
        EXPECT_EQ(std::string(aside.name()).substr(0, 9), ".zq-gone.");
    }
    EXPECT_EQ(names().substr(0, 9), ".zq-gone.");
    EXPECT_FALSE(scene::stands(folder / "tree"));
}

TEST_F(SetAsideTest, usesAFolderForNamesThatAreLong) {
    for (const std::string& name : {std::string(246, 'n'), std::string(255, 'n')}) {
        folder.file(name, "x");
        const ItemPlace place = placeOf(name);
        {
            SetAside aside(place);
            ASSERT_TRUE(aside.take(itemAt(place)));
            EXPECT_EQ(names().substr(0, 11), ".zq-asides.");
            EXPECT_EQ(aside.name(), name);
        }
        EXPECT_EQ(names(), name + " ");
        SetAside aside(place);
        ASSERT_TRUE(aside.take(itemAt(place)));
        EXPECT_TRUE(aside.removeFile());
        EXPECT_EQ(names(), "");
    }
}

TEST_F(SetAsideTest, givesUpATreeOfALongName) {
    const std::string name(255, 'n');
    folder.folder(name);
    const ItemPlace place = placeOf(name);
    SetAside aside(place);
    ASSERT_TRUE(aside.take(itemAt(place)));
    ASSERT_TRUE(aside.giveUp());
    EXPECT_EQ(names().substr(0, 9), ".zq-gone.");
    EXPECT_EQ(names().find(".zq-asides."), std::string::npos);
}

TEST_F(SetAsideTest, failsForWhatHasNoNameOfItsOwn) {
    ItemPlace place;
    ASSERT_TRUE(place.open("/"));
    SetAside aside(place);
    EXPECT_FALSE(aside.take(itemAt(place)));
    EXPECT_EQ(errno, EINVAL);
}
