#include "ledwidget.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>

// The widget's children, built in code as a form editor would lay them out.
struct LedWidget::Ui
{
    QHBoxLayout *horizontalLayout = nullptr;
    QLabel *activeLed = nullptr;
    QLabel *textLabel = nullptr;

    void setupUi(QWidget *form)
    {
        if (form->objectName().isEmpty())
            form->setObjectName(QStringLiteral("LedWidget"));
        form->resize(78, 16);
        form->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);

        horizontalLayout = new QHBoxLayout(form);
        horizontalLayout->setSpacing(4);
        horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
        horizontalLayout->setContentsMargins(0, 0, 0, 0);

        activeLed = new QLabel(form);
        activeLed->setObjectName(QStringLiteral("activeLed"));
        activeLed->setPixmap(QPixmap(QStringLiteral(":/Icons/Led-10x10.png")));
        horizontalLayout->addWidget(activeLed);

        textLabel = new QLabel(form);
        textLabel->setObjectName(QStringLiteral("textLabel"));
        textLabel->setTextFormat(Qt::AutoText);
        textLabel->setOpenExternalLinks(false);
        horizontalLayout->addWidget(textLabel);

        form->setWindowTitle(QCoreApplication::translate("LedWidget", "Form"));
        textLabel->setText(QCoreApplication::translate("LedWidget", "Text"));

        QMetaObject::connectSlotsByName(form);
    }
};

LedWidget::LedWidget(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui>())
{
    ui->setupUi(this);
    adjustSize();
}

LedWidget::~LedWidget() = default;

QString LedWidget::text() const
{
    return ui->textLabel->text();
}

bool LedWidget::isLedActive() const
{
    return ui->activeLed->isEnabled();
}

void LedWidget::setText(const QString &a_sText)
{
    ui->textLabel->setText(a_sText);
    adjustSize();
}

void LedWidget::setLedActive(bool a_bActive)
{
    ui->activeLed->setEnabled(a_bActive);
}

void LedWidget::activeateLed()
{
    ui->activeLed->setEnabled(true);
}

void LedWidget::deactivateLed()
{
    ui->activeLed->setEnabled(false);
}
