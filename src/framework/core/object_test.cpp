#include "framework/core/object.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

class CAnimal : public CObject {
    DECLARE_DYNAMIC(CAnimal)
};
IMPLEMENT_DYNAMIC(CAnimal, CObject)

class CDog : public CAnimal {
    DECLARE_DYNCREATE(CDog)
public:
    int m_nBarks = 3;
};
IMPLEMENT_DYNCREATE(CDog, CAnimal)

class CCat : public CAnimal {
    DECLARE_DYNCREATE(CCat)
public:
    CCat() { throw std::runtime_error("no cats"); }
};
IMPLEMENT_DYNCREATE(CCat, CAnimal)

TEST(CObjectTest, RuntimeClassDescribesTheClass) {
    const CRuntimeClass* dog = RUNTIME_CLASS(CDog);
    EXPECT_STREQ(dog->m_lpszClassName, "CDog");
    EXPECT_EQ(dog->m_nObjectSize, static_cast<int>(sizeof(CDog)));
    EXPECT_EQ(dog->m_pBaseClass, RUNTIME_CLASS(CAnimal));
    EXPECT_EQ(RUNTIME_CLASS(CAnimal)->m_pBaseClass, RUNTIME_CLASS(CObject));
    EXPECT_EQ(RUNTIME_CLASS(CObject)->m_pBaseClass, nullptr);
    EXPECT_STREQ(RUNTIME_CLASS(CObject)->m_lpszClassName, "CObject");
}

TEST(CObjectTest, IsKindOfFollowsTheBaseChain) {
    CDog dog;
    const CObject& object = dog;
    EXPECT_EQ(object.GetRuntimeClass(), RUNTIME_CLASS(CDog));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CDog)));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CAnimal)));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(object.IsKindOf(RUNTIME_CLASS(CCat)));
    EXPECT_FALSE(object.IsKindOf(nullptr));
    EXPECT_FALSE(RUNTIME_CLASS(CAnimal)->IsDerivedFrom(RUNTIME_CLASS(CDog)));
}

TEST(CObjectTest, CreateObjectOnlyForCreatableClasses) {
    std::unique_ptr<CObject> made(RUNTIME_CLASS(CDog)->CreateObject());
    ASSERT_NE(made, nullptr);
    ASSERT_TRUE(made->IsKindOf(RUNTIME_CLASS(CDog)));
    EXPECT_EQ(static_cast<CDog*>(made.get())->m_nBarks, 3);
    EXPECT_EQ(RUNTIME_CLASS(CAnimal)->CreateObject(), nullptr);
    EXPECT_EQ(RUNTIME_CLASS(CObject)->CreateObject(), nullptr);
    EXPECT_EQ(RUNTIME_CLASS(CCat)->CreateObject(), nullptr);  // constructor threw
}

}  // namespace
