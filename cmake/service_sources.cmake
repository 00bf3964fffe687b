# The service's own sources: the same list builds libvorn_service.z.so on the host and on a
# device, so keep it the only place where they are named for CMake.
set(VORN_SERVICE_SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/vorn_error_code.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../config/vorn_init_config_parser.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../config/vorn_omsa_info.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/string_utils.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/time_utils.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/path.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/file_utils.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/base_event.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../http/vorn_http_logic.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../service/vorn_request_callback_proxy.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../service/vorn_sa.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../service/vorn_sa_stub.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../server_logic/vorn_server_logic.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/vorn_thread.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/ffrt_executor.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/event_handler_executor.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../utils/src/omsa_util.cpp
)
set(VORN_SERVICE_INCLUDE_DIRS
  ${CMAKE_CURRENT_LIST_DIR}/../service
  ${CMAKE_CURRENT_LIST_DIR}/../config
  ${CMAKE_CURRENT_LIST_DIR}/../server_logic
  ${CMAKE_CURRENT_LIST_DIR}/../http
  ${CMAKE_CURRENT_LIST_DIR}/../utils/include
)
