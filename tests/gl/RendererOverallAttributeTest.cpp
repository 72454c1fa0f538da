// Constant attributes: one row for each combination of components, normalisation and type.

#include "RendererFixture.h"

#include <string>

namespace renderengine
{
namespace
{

struct AttributeRow
{
    uint8_t componentCount;
    uint8_t normalized;
    SbDataType::Type type;
    const char* function; ///< null for a combination without an entry
};

class OverallAttributeTest : public RendererGLTest, public ::testing::WithParamInterface<AttributeRow>
{
};

TEST_P(OverallAttributeTest, GoesThroughItsEntry)
{
    const AttributeRow& row = GetParam();
    Scene scene = makeScene();
    OverallAttribute attribute;
    attribute.name = "normal";
    attribute.componentCount = row.componentCount;
    attribute.normalized = row.normalized;
    attribute.dataType = row.type;
    OverallAttribute unknown = attribute;
    unknown.name = "unknown";
    scene.properties.overallAttributes = {unknown, attribute};
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    gl.clear();
    run<CommandRender>(scene.draw);
    Texts sent;
    for (const std::string& call : gl.calls())
    {
        if (call.rfind("glVertexAttrib", 0) == 0 && call.rfind("glVertexAttribPointer", 0) != 0 &&
            call.rfind("glVertexAttribDivisor", 0) != 0)
        {
            sent.push_back(call.substr(0, call.find(',')));
        }
    }
    EXPECT_EQ(sent, row.function == nullptr ? Texts{} : Texts{std::string(row.function) + "(1"});
}

INSTANTIATE_TEST_SUITE_P(
    Table, OverallAttributeTest,
    ::testing::Values(
        AttributeRow{1, 0, SbDataType::UNSIGNED_BYTE, nullptr}, AttributeRow{1, 0, SbDataType::UNSIGNED_SHORT, nullptr},
        AttributeRow{1, 0, SbDataType::UNSIGNED_INT, "glVertexAttribI1uiv"},
        AttributeRow{1, 0, SbDataType::BYTE, nullptr}, AttributeRow{1, 0, SbDataType::SHORT, "glVertexAttrib1sv"},
        AttributeRow{1, 0, SbDataType::INT, "glVertexAttribI1iv"},
        AttributeRow{1, 1, SbDataType::FLOAT, "glVertexAttrib1fv"},
        AttributeRow{1, 0, SbDataType::DOUBLE, "glVertexAttrib1dv"},
        AttributeRow{2, 0, SbDataType::UNSIGNED_BYTE, nullptr}, AttributeRow{2, 0, SbDataType::UNSIGNED_SHORT, nullptr},
        AttributeRow{2, 0, SbDataType::UNSIGNED_INT, "glVertexAttribI2uiv"},
        AttributeRow{2, 0, SbDataType::BYTE, nullptr}, AttributeRow{2, 1, SbDataType::SHORT, "glVertexAttrib2sv"},
        AttributeRow{2, 0, SbDataType::INT, "glVertexAttribI2iv"},
        AttributeRow{2, 0, SbDataType::FLOAT, "glVertexAttrib2fv"},
        AttributeRow{2, 0, SbDataType::DOUBLE, "glVertexAttrib2dv"},
        AttributeRow{3, 0, SbDataType::UNSIGNED_BYTE, nullptr}, AttributeRow{3, 0, SbDataType::UNSIGNED_SHORT, nullptr},
        AttributeRow{3, 0, SbDataType::UNSIGNED_INT, "glVertexAttribI3uiv"},
        AttributeRow{3, 0, SbDataType::BYTE, nullptr}, AttributeRow{3, 0, SbDataType::SHORT, "glVertexAttrib3sv"},
        AttributeRow{3, 1, SbDataType::INT, "glVertexAttribI3iv"},
        AttributeRow{3, 0, SbDataType::FLOAT, "glVertexAttrib3fv"},
        AttributeRow{3, 0, SbDataType::DOUBLE, "glVertexAttrib3dv"},
        AttributeRow{4, 0, SbDataType::UNSIGNED_BYTE, "glVertexAttrib4ubv"},
        AttributeRow{4, 0, SbDataType::UNSIGNED_SHORT, "glVertexAttrib4usv"},
        AttributeRow{4, 0, SbDataType::UNSIGNED_INT, "glVertexAttrib4uiv"},
        AttributeRow{4, 0, SbDataType::BYTE, "glVertexAttrib4bv"},
        AttributeRow{4, 0, SbDataType::SHORT, "glVertexAttrib4sv"},
        AttributeRow{4, 0, SbDataType::INT, "glVertexAttrib4iv"},
        AttributeRow{4, 0, SbDataType::FLOAT, "glVertexAttrib4fv"},
        AttributeRow{4, 0, SbDataType::DOUBLE, "glVertexAttrib4dv"},
        AttributeRow{4, 1, SbDataType::UNSIGNED_BYTE, "glVertexAttrib4Nubv"},
        AttributeRow{4, 1, SbDataType::UNSIGNED_SHORT, "glVertexAttrib4Nusv"},
        AttributeRow{4, 1, SbDataType::UNSIGNED_INT, "glVertexAttrib4Nuiv"},
        AttributeRow{4, 1, SbDataType::BYTE, "glVertexAttrib4Nbv"},
        AttributeRow{4, 1, SbDataType::SHORT, "glVertexAttrib4Nsv"},
        AttributeRow{4, 1, SbDataType::INT, "glVertexAttrib4Niv"},
        AttributeRow{4, 1, SbDataType::FLOAT, "glVertexAttrib4fv"},
        AttributeRow{4, 1, SbDataType::DOUBLE, "glVertexAttrib4dv"},
        AttributeRow{4, 0, SbDataType::RESERVED_7, nullptr}, AttributeRow{5, 0, SbDataType::FLOAT, nullptr}));

} // namespace
} // namespace renderengine
