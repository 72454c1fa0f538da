#include "gl/BaseResourceGL.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace renderengine
{

namespace
{

using ResourceList = std::vector<BaseResourceGL*>;

} // namespace

TEST(BaseResourceGL, IsCleanAndUnlinkedAtFirst)
{
    const BaseResourceGL resource;
    EXPECT_FALSE(resource.isDirty());
    EXPECT_TRUE(resource.getDependents().empty());
    EXPECT_TRUE(resource.getDependencies().empty());
}

TEST(BaseResourceGL, LinksBothEndsOfADependency)
{
    BaseResourceGL source;
    BaseResourceGL merged;
    merged.addDependency(source);
    EXPECT_EQ(merged.getDependencies(), ResourceList{&source});
    EXPECT_EQ(source.getDependents(), ResourceList{&merged});
    EXPECT_TRUE(merged.getDependents().empty());
    EXPECT_TRUE(source.getDependencies().empty());
}

TEST(BaseResourceGL, SetsDependentsDirtyThroughTheWholeGraph)
{
    BaseResourceGL source;
    BaseResourceGL merged;
    BaseResourceGL batch;
    BaseResourceGL stranger;
    merged.addDependency(source);
    batch.addDependency(merged);
    source.setDirty(true);
    EXPECT_TRUE(source.isDirty());
    EXPECT_TRUE(merged.isDirty());
    EXPECT_TRUE(batch.isDirty());
    EXPECT_FALSE(stranger.isDirty());
}

TEST(BaseResourceGL, DoesNotReachDependencies)
{
    BaseResourceGL source;
    BaseResourceGL merged;
    merged.addDependency(source);
    merged.setDirty(true);
    EXPECT_FALSE(source.isDirty());
}

TEST(BaseResourceGL, ClearingStaysWithTheResource)
{
    BaseResourceGL source;
    BaseResourceGL merged;
    merged.addDependency(source);
    source.setDirty(true);
    source.setDirty(false);
    EXPECT_FALSE(source.isDirty());
    EXPECT_TRUE(merged.isDirty());
}

TEST(BaseResourceGL, ReachesACleanDependentOfAResourceThatIsDirtyAlready)
{
    BaseResourceGL source;
    BaseResourceGL merged;
    merged.addDependency(source);
    source.setDirty(true);
    merged.setDirty(false);
    source.setDirty(true);
    EXPECT_TRUE(merged.isDirty());
}

TEST(BaseResourceGL, LinksTheSamePairOnce)
{
    BaseResourceGL source;
    BaseResourceGL other;
    BaseResourceGL merged;
    merged.addDependency(other);
    merged.addDependency(source);
    merged.addDependency(source);
    EXPECT_EQ(merged.getDependencies(), (ResourceList{&other, &source}));
    EXPECT_EQ(source.getDependents(), ResourceList{&merged});
}

TEST(BaseResourceGL, LinksManyDependentsOfOneSourceOnceEach)
{
    BaseResourceGL source;
    std::vector<std::unique_ptr<BaseResourceGL>> dependents;
    for (int i = 0; i < 10; ++i)
    {
        dependents.push_back(std::make_unique<BaseResourceGL>());
        dependents.back()->addDependency(source);
        dependents.back()->addDependency(source);
    }
    EXPECT_EQ(source.getDependents().size(), 10u);
}

TEST(BaseResourceGL, UnlinksItselfFromBothSidesWhenDestroyed)
{
    BaseResourceGL source;
    BaseResourceGL batch;
    {
        BaseResourceGL merged;
        merged.addDependency(source);
        batch.addDependency(merged);
    }
    EXPECT_TRUE(source.getDependents().empty());
    EXPECT_TRUE(batch.getDependencies().empty());
    source.setDirty(true);
    EXPECT_FALSE(batch.isDirty());
}

TEST(BaseResourceGL, ResetDropsDependenciesAndKeepsDependents)
{
    BaseResourceGL texture;
    BaseResourceGL target;
    BaseResourceGL batch;
    target.addDependency(texture);
    batch.addDependency(target);
    target.resetDependencies();
    EXPECT_TRUE(target.getDependencies().empty());
    EXPECT_TRUE(texture.getDependents().empty());
    EXPECT_EQ(target.getDependents(), ResourceList{&batch});
}

} // namespace renderengine
