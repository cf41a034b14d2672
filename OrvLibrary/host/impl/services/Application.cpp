#include "OrvLibrary/host/Application.h"

std::atomic<Application*> gApp{nullptr};

Application::Application() = default;
Application::~Application() = default;

Application* Application::install(Application* application)
{
    return gApp.exchange(application);
}
