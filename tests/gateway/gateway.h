#pragma once

#include "programrun.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

/// What a copy of a gateway has: each file with the name of the library that it is a copy of.
using GatewayRoot = QMap<QString, QString>;

/// A gateway on which the library "plugin" loads, and the same with one difference.
GatewayRoot completeGateway();
GatewayRoot gatewayWith(const QString &place, const QString &library);
GatewayRoot gatewayWithout(const QString &place);
GatewayRoot gatewayMoved(const QString &from, const QString &to);

/// Compiles a library to the file `name` in `folder`; it needs the libraries `needed` beside it.
/// `versions` is a script for the linker, or nothing.
bool buildLibrary(const QString &folder, const QString &name, const QString &soname,
                  const QByteArray &source, const QByteArray &versions = {},
                  const QStringList &needed = {});

/// The plug-in's code, and its metadata with the identifier org.example.VELInterface/1.0.7.
QByteArray pluginCode();
QByteArray pluginMetadata();

/// A program that asks for plug-ins of this identifier.
QByteArray hostCode(const QByteArray &identifier);

/// Compiles the library "plugin" and what a complete gateway is made of: "libc", "qt", "vel",
/// "host".
bool buildGateway(const QString &folder);

/// Lays the root out in `rootFolder`, of copies of the libraries in `folder`.
bool layGateway(const QString &folder, const QString &rootFolder, const GatewayRoot &root);
