#include <gtest/gtest.h>

#include <QAccessible>
#include <QTest>

#include "display/accessiblevalue.h"

namespace qv3 {
namespace {

class Lamp : public ValueWidget {
 public:
  QString accessibleValue() const override {
    m_composed << (m_on ? "on" : "off");
    return m_composed.last();
  }
  void turn(bool on) {
    m_on = on;
    tellAccessibleValue();
  }
  void listen() { m_heard = true; }
  QStringList composed() const { return m_composed; }
  std::vector<SurfacePart> accessibleParts() const override {
    return {{"Bulb", m_on ? "on" : "", {2, 3, 4, 5}}};
  }

 protected:
  bool isHeard() const override { return m_heard; }

 private:
  bool m_on = false;
  bool m_heard = false;
  mutable QStringList m_composed;
};

TEST(AccessibleValue, CostsNothingWhileNobodyListens) {
  Lamp lamp;
  lamp.turn(true);
  EXPECT_EQ(lamp.composed(), QStringList());
}

TEST(AccessibleValue, WordsAreValueAndDescription) {
  Lamp lamp;
  lamp.setAccessibleName("Alert lamp");
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&lamp);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(face->text(QAccessible::Name), "Alert lamp");
  EXPECT_EQ(face->text(QAccessible::Value), "off");
  EXPECT_EQ(face->text(QAccessible::Description), "off");
  lamp.setAccessibleDescription("Tells SET from body motion");
  EXPECT_EQ(face->text(QAccessible::Description), "Tells SET from body motion");
}

TEST(AccessibleValue, ManyChangesAreToldOnceAndTheLastIsNotLost) {
  Lamp lamp;
  lamp.listen();
  for (int change = 0; change < 999; ++change) lamp.turn(change % 2 == 0);
  lamp.turn(false);
  EXPECT_EQ(lamp.composed(), QStringList{"on"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return lamp.composed().count() == 2; }));
  EXPECT_EQ(lamp.composed().last(), "off");
  lamp.turn(true);
  EXPECT_EQ(lamp.composed().count(), 2) << "the last telling is fresh";
}

TEST(AccessibleValue, PartsAreChildrenWithoutAnObject) {
  QAccessible::Id id = 0;
  {
    Lamp lamp;
    lamp.resize(10, 10);
    lamp.show();
    lamp.turn(true);
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&lamp);
    ASSERT_EQ(face->childCount(), 1);
    QAccessibleInterface* bulb = face->child(0);
    id = QAccessible::uniqueId(bulb);
    EXPECT_EQ(bulb->parent(), face);
    EXPECT_EQ(bulb->text(QAccessible::Name), "Bulb");
    EXPECT_EQ(bulb->text(QAccessible::Value), "on");
    EXPECT_EQ(bulb->rect(), QRect(lamp.mapToGlobal(QPoint(2, 3)), QSize(4, 5)));
    EXPECT_EQ(face->childAt(bulb->rect().x(), bulb->rect().y()), bulb);
    EXPECT_FALSE(bulb->state().invisible);
    lamp.turn(false);
    EXPECT_TRUE(bulb->state().invisible);
    EXPECT_EQ(face->child(1), nullptr);
  }
  EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr) << "gone with its surface";
}

}  // namespace
}  // namespace qv3
