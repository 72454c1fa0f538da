# The renderers: exact sequences of GL calls on the recording table, driven by commands without a context.

renderengine_add_test(gl_renderer_tests
  SOURCES
    RendererClearTest.cpp
    RendererDrawTest.cpp
    RendererFaultTest.cpp
    RendererFrameTest.cpp
    RendererGL46Test.cpp
    RendererMergeTest.cpp
    RendererResourceTest.cpp
    RendererTaskTest.cpp
  LIBRARIES renderengine_static glbinding_testing renderengine_test_support)

# The same renderers on a real context: pictures and read-back data.
renderengine_add_test(gl_renderer_device_tests
  SOURCES
    RendererDrawDeviceTest.cpp
    RendererMergeDeviceTest.cpp
    RendererPresentDeviceTest.cpp
    RendererTaskDeviceTest.cpp
  LIBRARIES renderengine_test_support)
