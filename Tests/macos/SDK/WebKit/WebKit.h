#pragma once

#include <AppKit/AppKit.h>
#include <WebKit/WKFrameInfo.h>
#include <WebKit/WKNavigation.h>
#include <WebKit/WKNavigationAction.h>
#include <WebKit/WKNavigationDelegate.h>
#include <WebKit/WKScriptMessage.h>
#include <WebKit/WKScriptMessageHandler.h>
#include <WebKit/WKUIDelegate.h>
#include <WebKit/WKUserContentController.h>
#include <WebKit/WKUserScript.h>
#include <WebKit/WKWebView.h>
#include <WebKit/WKWebViewConfiguration.h>
#include <WebKit/WKWebsiteDataStore.h>
