# The renderers: exact sequences of GL calls on the recording table, driven by commands without a context.

renderengine_add_test(gl_renderer_tests
  SOURCES
    RandomScene.cpp
    RandomSceneTest.cpp
    RecordedDraws.cpp
    RendererClearTest.cpp
    RendererDebugGroupTest.cpp
    RendererDrawTest.cpp
    RendererEditTest.cpp
    RendererFaultTest.cpp
    RendererFrameTest.cpp
    RendererGL46SequenceTest.cpp
    RendererGL46Test.cpp
    RendererIndexSequenceTest.cpp
    RendererMergeTest.cpp
    RendererOverallAttributeTest.cpp
    RendererPlainDrawTest.cpp
    RendererResourceTest.cpp
    RendererSequenceTest.cpp
    RendererTaskTest.cpp
    ScenePlayer.cpp
  LIBRARIES renderengine_static glbinding_testing renderengine_test_support)

# The same renderers on a real context: pictures and read-back data.
renderengine_add_test(gl_renderer_device_tests
  SOURCES
    RandomScene.cpp
    RandomSceneDeviceTest.cpp
    RendererDrawDeviceTest.cpp
    RendererMergeDeviceTest.cpp
    RendererPresentDeviceTest.cpp
    RendererTaskDeviceTest.cpp
    ScenePlayer.cpp
    ShaderContractDeviceTest.cpp
  LIBRARIES renderengine_test_support)
target_include_directories(gl_renderer_device_tests PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
include(ShaderContractExample.cmake)
