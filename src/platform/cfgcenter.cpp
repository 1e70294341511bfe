#include "cfgcenter.h"

#include <QCryptographicHash>
#include <QMutex>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>
#include <QSysInfo>

#include <memory>

ICfg::~ICfg() = default;

namespace {

QMutex fileMutex;
QString configuredFile;

class IniCfg : public ICfg
{
public:
    IniCfg(const QString &file, const QString &group)
        : m_file(file)
        , m_group(group)
        , m_settings(std::make_unique<QSettings>(file, QSettings::IniFormat))
    {
        m_settings->setIniCodec("UTF-8");
        if (!group.isEmpty())
            m_settings->beginGroup(group);
    }

    ICfg *OpenSection(const QString &name, int) override
    {
        return new IniCfg(m_file, m_group.isEmpty() ? name : m_group + QLatin1Char('/') + name);
    }

    bool SectionExists(const QString &name, int) const override
    {
        m_settings->sync();
        m_settings->beginGroup(name);
        const bool exists = !m_settings->allKeys().isEmpty();
        m_settings->endGroup();
        return exists;
    }

    QString GetString(const QString &key, const QString &defaultValue, int) const override
    {
        const QVariant value = read(key);
        if (!value.isValid())
            return defaultValue;
        // An unquoted comma in a hand-written file makes QSettings split the text into a list.
        if (value.type() == QVariant::StringList)
            return value.toStringList().join(QStringLiteral(", "));
        return value.toString();
    }

    double GetNumber(const QString &key, double defaultValue, int) const override
    {
        bool ok = false;
        const double number = read(key).toDouble(&ok);
        return ok ? number : defaultValue;
    }

    void SetValue(const QString &key, const QVariant &value) override
    {
        m_settings->setValue(key, value);
        m_settings->sync();
    }

private:
    QVariant read(const QString &key) const
    {
        m_settings->sync();
        // QSettings parses INI sections lazily and then misses "a/key" when a section "[a/b]"
        // follows "[a]"; listing the keys parses the whole file first.
        m_settings->childKeys();
        return m_settings->value(key);
    }

    QString m_file;
    QString m_group;
    // Reads sync first, so a const handle still refreshes its view of the file.
    std::unique_ptr<QSettings> m_settings;
};

} // namespace

ICfg *CfgCenter::CreateCfg(QString section, View, QString)
{
    return new IniCfg(configurationFile(), section);
}

QString CfgCenter::GetMachineId()
{
    static const QString id = [] {
        QByteArray source = QSysInfo::machineUniqueId();
        if (source.isEmpty())
            source = QSysInfo::machineHostName().toUtf8();
        const QByteArray hash = QCryptographicHash::hash(source, QCryptographicHash::Sha1);
        return QString::fromLatin1(hash.toHex().left(16).toUpper());
    }();
    return id;
}

void CfgCenter::setConfigurationFile(const QString &path)
{
    QMutexLocker locker(&fileMutex);
    configuredFile = path;
}

QString CfgCenter::configurationFile()
{
    QMutexLocker locker(&fileMutex);
    if (configuredFile.isEmpty())
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
            + QStringLiteral("/radiosim/radiosim.ini");
    return configuredFile;
}
